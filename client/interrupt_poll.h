#pragma once

#include "interrupt_flag.h"

#include <QObject>
#include <QTimer>

namespace tarnClient {

// Brings Ctrl+C and the request to terminate into the event loop, for as long as it lives.
class InterruptPoll : public QObject
{
    Q_OBJECT

public:
    explicit InterruptPoll(QObject *parent = nullptr);

    // Also before the event loop has had a chance to tell.
    [[nodiscard]] bool isRaised() const;

signals:
    void raised();

private:
    void look();

    InterruptFlag flag;
    QTimer timer;
};

} // namespace tarnClient
