#pragma once

#include <QPointer>
#include <QWidget>

class QDialog;
class QLineEdit;
class QPushButton;

namespace tarnPanel {

class Session;

// The command that does what was last done in the window, and the way to all of them.
class SessionBar : public QWidget
{
    Q_OBJECT

public:
    // `folder` is where the programs lie. The session outlives the widget.
    SessionBar(Session &session, const QString &folder, QWidget *parent = nullptr);

    // Opens the list of all commands, from which they are copied and saved; one at most.
    void showAll();
    // Asks for a file and saves the session as a script.
    void saveAs();
    // Why that failed; empty when it is saved.
    [[nodiscard]] static QString save(const Session &session, const QString &folder, const QString &file);

private:
    void refresh();
    void copy();
    void tell(const QString &problem);

    Session &session;
    const QString folder;
    QLineEdit *last;
    QPushButton *copyButton;
    QPushButton *allButton;
    QPointer<QDialog> list;
};

} // namespace tarnPanel
