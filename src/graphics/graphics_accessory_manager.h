#pragma once

#include <QObject>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnAccessoryManager {

// The external graphics box. Its entry points run on the monitor's thread, with ecAccessMutex held.
class GraphicsAccessoryManager : public QObject
{
    Q_OBJECT

public:
    static GraphicsAccessoryManager *instance();
    ~GraphicsAccessoryManager() override;

    // Called in every cycle while a box is attached: fetches and acknowledges the EC's event.
    void handleEcAppEvent();

public Q_SLOTS:
    void gpuActiveProcessFirst();
    void handleGraphicsConnectSignal();

private:
    friend class tarnPlatform::ProcessWide<GraphicsAccessoryManager>;
    GraphicsAccessoryManager();
};

} // namespace tarnAccessoryManager
