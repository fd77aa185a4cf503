#pragma once

#include <QWidget>

class QComboBox;
class QLineEdit;
class QPushButton;
class QSettings;
class QTableView;

namespace tarnPanel {

class MessageFilter;
class MessageLog;
class ToneLabel;

// The messages as a table that follows its end. It pauses while somebody reads further up or has selected
// something, and says so.
class MessageView : public QWidget
{
    Q_OBJECT

public:
    // Remembers its filters in `settings`, which outlive it, as `log` does.
    MessageView(MessageLog &log, QSettings &settings, QWidget *parent = nullptr);

    void copySelected();

protected:
    void changeEvent(QEvent *event) override;

private:
    void addFilters();
    void addTable();
    void addState();
    void addActions();
    void listen();
    void useFilters();
    void fitToFont();
    [[nodiscard]] bool isPaused() const;
    void followEnd();
    void resume();
    void keepPlace(int first, int last);
    void showState();

    MessageLog &log;
    QSettings &settings;
    MessageFilter *filter;
    QComboBox *kind;
    QLineEdit *text;
    QTableView *table;
    ToneLabel *state;
    QPushButton *resuming;
    bool follows = true;
    // Rows that have come during the pause.
    int newRows = 0;
};

} // namespace tarnPanel
