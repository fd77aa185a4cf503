#pragma once

#include "panel/client/age.h"

#include <QWidget>

class QPushButton;

namespace tarnPanel {

class ServiceLink;
class ToneLabel;

// What the connection is like and why, and the buttons for it.
class ConnectionHeader : public QWidget
{
    Q_OBJECT

public:
    explicit ConnectionHeader(ServiceLink &link, QWidget *parent = nullptr);

    // For a service of which it is known that no application waits for it. Never after the user has
    // disconnected.
    void connectByItself();
    // Shortens the pause before the next attempt.
    void connectSoon();
    void refresh();

Q_SIGNALS:
    void refreshAsked();

private:
    void open();
    void close();
    [[nodiscard]] QPushButton *addButton(const QString &name, const QString &text, const QString &hint);

    ServiceLink &link;
    ToneLabel *state;
    QPushButton *opening;
    QPushButton *closing;
    QPushButton *reading;
    QString shown;
    Age age;
    bool hasOpened = false;
};

} // namespace tarnPanel
