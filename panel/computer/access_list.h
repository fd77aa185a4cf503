#pragma once

#include "panel/computer/access_model.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSettings;
class QTableView;

namespace tarnSimulator {
class ComputerControl;
}

namespace tarnPanel {

// The registers as they are accessed: filtered, paused by a click into the list, copied.
class AccessList : public QWidget
{
    Q_OBJECT

public:
    // `memory` keeps the filter.
    explicit AccessList(QSettings &memory, QWidget *parent = nullptr);

    // Takes what is new in the computer's log.
    void look(const tarnSimulator::ComputerControl &computer);
    // Another machine: its numbers begin anew.
    void startAnew();
    void append(const std::vector<tarnSimulator::RegisterAccess> &accesses, std::uint64_t lostNow);

    [[nodiscard]] AccessModel &accessModel() { return model; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] QWidget *makeTopLine();
    void setUpTable();
    void setColumnWidths();
    void widenColumn(int column);
    void applyFilter();
    void setPaused(bool paused);
    void followEnd();
    void copySelected() const;
    void showState();

    QSettings &settings;
    AccessModel model;
    QTableView *table;
    QLineEdit *filterLine;
    QComboBox *kindBox;
    QPushButton *pauseButton;
    QLabel *state;
    std::uint64_t cursor = 0;
    std::uint64_t lost = 0;
};

} // namespace tarnPanel
