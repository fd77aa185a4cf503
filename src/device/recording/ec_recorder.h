#pragma once

#include "device/recording/ec_record.h"
#include "device/recording/recording_file.h"

#include <QtGlobal>

#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace tarnRecording {

// Records what goes over the ports of the EC, and loads and unloads of the port library, for somebody who
// does not have the computer. It is switched on by a file that is there when the driver is made
// (path::recordingSwitch); without it nothing of this exists, and the driver calls the library itself.
//
// Nothing that goes wrong with the recording reaches the driver. It is written on the thread of the access,
// ten times a second at most, and at once when the library is unloaded. Any thread.
class EcRecorder
{
public:
    using Out32 = void (*)(quint16 port, qint16 value);
    using Inp32 = qint16 (*)(quint16 port);

    // The recorder of this process; null when nothing is recorded. The first call decides.
    [[nodiscard]] static EcRecorder *active();
    // The same, but decides nothing: null also before the first call of active().
    [[nodiscard]] static EcRecorder *existing();

    // What it has is written that often, if there are accesses.
    static constexpr std::chrono::milliseconds usualPause {100};

    explicit EcRecorder(
        std::unique_ptr<RecordingFile> recordingFile, std::chrono::milliseconds writingPause = usualPause);

    // Puts functions that record in the place of these, which they call.
    void tap(Out32 &out, Inp32 &inp);
    void noteLoad(EcRecord::LoadResult result);
    void noteUnload();
    // Hands what is still kept to the system.
    void flush();
    // The same, unless a thread is held up in writing for longer than that.
    void flushWithin(std::chrono::milliseconds limit);

private:
    using Clock = std::chrono::steady_clock;

    static void recordedOut(quint16 port, qint16 value);
    static qint16 recordedInp(quint16 port);

    void note(EcRecord::Kind kind, quint16 port, quint16 value, Clock::time_point at);
    void noteEvent(const EcRecord &record);
    void endRun();
    void add(const EcRecord &record);
    [[nodiscard]] quint64 usOf(Clock::time_point at) const;
    [[nodiscard]] quint32 ownThread();

    const std::chrono::milliseconds pause;
    Out32 realOut = nullptr;
    Inp32 realInp = nullptr;
    const Clock::time_point begun = Clock::now();
    std::mutex mutex; // for all below
    std::unique_ptr<RecordingFile> file;
    EcRecord run; // equal reads that may go on; its count is 0 when there are none
    quint64 accesses = 0; // that have been added to the file
    Clock::time_point written = begun;
    std::unordered_map<std::thread::id, quint32> threads;
};

} // namespace tarnRecording
