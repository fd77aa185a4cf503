#pragma once

#include <QObject>

#include <atomic>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnAccessoryManager {

// The external graphics box. Activation and disengagement run on the monitor's thread, with ecAccessMutex
// held for as long as they take, prompts included; the light and the ban before an MCU update run on handler
// threads.
class GraphicsAccessoryManager : public QObject
{
    Q_OBJECT

public:
    static GraphicsAccessoryManager *instance();
    ~GraphicsAccessoryManager() override;

    // Called in every cycle while a box is attached: fetches, acknowledges and handles the EC's event.
    void handleEcAppEvent();

    // gpu_activation.cpp: 0 when the GPU works and the EC knows it, else -1.
    int graphicsActiveProcess();

    // gpu_disengagement.cpp
    void graphicsDisengagementProcess();
    // 0 done, also when the user answered no; -1 the state could not be read or reported; -2 not disabled.
    int handleGpuKeyEvent();
    void banGpu();
    // Takes no lock and informs neither client nor EC.
    void banGpuForMcuUpdate();

    // gpu_devices.cpp: GPU_PRESENT, GPU_DRIVER_INSTALLED and GPU_STARTED as a number, -1 when the adapters
    // cannot be listed or asked. Virtual for tests, because this never reports the box as absent: the EC has
    // already reported it.
    [[nodiscard]] virtual int getGpuDriverData();
    // False when the NVIDIA adapter is in a state that needs the driver patch, or cannot be examined.
    [[nodiscard]] bool checkNvidiaAdapterStatus();
    // 0, or -1 when the list could not be opened or any adapter refused.
    [[nodiscard]] int enableGpu();
    [[nodiscard]] int disableGpu();

    // hd_audio_reset.cpp: false only when the list of devices could not be opened.
    bool resetHdAudioDevice();

    // graphics_rgb.cpp, on the colour numbers of graphics_colours.h; both wait for ecAccessMutex.
    // -1: the command could not be written, -2: a colour byte could not be read.
    [[nodiscard]] int getGraphicsRgb();
    // 0; -1: no such colour, -2: an EC write failed.
    [[nodiscard]] int setGraphicsRgb(int colour);
    // The last colour that was not off, kept in a file; white when there is none.
    [[nodiscard]] int readGraphicsColor();
    void saveGraphicsColor(int colour);

public Q_SLOTS:
    void gpuActiveProcessFirst();
    void handleGraphicsDisengagedSignal();
    void handleGraphicsConnectSignal();

protected:
    GraphicsAccessoryManager();

private:
    friend class tarnPlatform::ProcessWide<GraphicsAccessoryManager>;

    std::atomic<bool> gpuActive {false}; // activated by this service and not disabled since
    bool gpuConnectHandled = false; // an activation has been tried
    bool disableProcessIdle = true; // no disengagement is running
};

} // namespace tarnAccessoryManager
