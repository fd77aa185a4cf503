#pragma once

#include <QObject>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnAccessoryManager {

// The dock's LED. Only the red channel carries its state. Any thread; both operations hold ecAccessMutex.
class DockAccessoryManager : public QObject
{
    Q_OBJECT

public:
    static DockAccessoryManager *instance();
    ~DockAccessoryManager() override;

    // 1 on, 0 off; -1 command not written, -2 state not read, -3 state neither on nor off.
    int getDockLedStatus();
    // 0, or -2 when a write failed. The value's low byte goes to the LED unchanged.
    int setDockLedStatus(quint32 value);

private:
    friend class tarnPlatform::ProcessWide<DockAccessoryManager>;
    DockAccessoryManager();
};

} // namespace tarnAccessoryManager
