#pragma once

#include <QDialog>

class QTableView;

namespace tarnPanel {

class Session;

// All commands of a session, the newest at the end; stays open beside the window.
class SessionList : public QDialog
{
    Q_OBJECT

public:
    explicit SessionList(Session &session, QWidget *parent = nullptr);

Q_SIGNALS:
    void saveWanted();

private:
    // The marked commands, else all.
    void copy();

    void noteEnd();
    void followEnd();

    QTableView *table;
    bool isAtEnd = true;
};

} // namespace tarnPanel
