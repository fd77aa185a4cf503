#pragma once

#include "interrupt_flag.h"

#include <QObject>
#include <QTimer>

namespace tarnctl {

// While an object exists, it reports Ctrl+C and SIGTERM by a signal in the event loop.
class InterruptPoll : public QObject
{
    Q_OBJECT

public:
    explicit InterruptPoll(QObject *parent = nullptr);

    // True at once, also before raised() has been emitted.
    [[nodiscard]] bool isRaised() const;

signals:
    void raised();

private:
    void look();

    InterruptFlag flag;
    QTimer timer;
};

} // namespace tarnctl
