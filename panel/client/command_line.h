#pragma once

#include <QStringListModel>
#include <QWidget>

class QLineEdit;
class QPushButton;

namespace tarnPanel {

class ServiceLink;
class ToneLabel;

// A line for any command of the service, with completion, a summary and a history.
class CommandLine : public QWidget
{
    Q_OBJECT

public:
    explicit CommandLine(ServiceLink &link, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void handleEdit();
    void showSummary();
    void offer(const QString &line);
    void sendChecked();
    void send();
    void recall(int step);
    [[nodiscard]] bool canSend() const;

    ServiceLink &link;
    QLineEdit *edit;
    QPushButton *sending;
    QPushButton *forcing;
    ToneLabel *summary;
    QStringListModel completions;
    // What speaks against the line, after somebody wanted to send it.
    QString objection;
    QStringList history;
    // The line that is shown; the size of the history: a new one.
    qsizetype place = 0;
};

} // namespace tarnPanel
