#include "device/recording/ec_recorder.h"

#include "platform/paths.h"

#include <QFileInfo>

#include <atomic>
#include <utility>

namespace tarnRecording {

namespace {

using Kind = EcRecord::Kind;

constexpr std::chrono::milliseconds lookPause {5};

std::unique_ptr<EcRecorder> recorderIfWanted()
{
    if (!QFileInfo::exists(tarnPlatform::path::recordingSwitch))
        return nullptr;
    return std::make_unique<EcRecorder>(
        std::make_unique<RecordingFile>(QFileInfo(tarnPlatform::path::recordingSwitch).path()));
}

std::atomic<EcRecorder *> recorderOfProcess {nullptr};

// What the recording functions call, which are plain functions as those of the library.
EcRecorder *tapped = nullptr;

} // namespace

// Never destroyed: threads may use the ports until the process has ended.
EcRecorder *EcRecorder::active()
{
    static EcRecorder *const recorder = recorderOfProcess = recorderIfWanted().release();
    return recorder;
}

EcRecorder *EcRecorder::existing()
{
    return recorderOfProcess;
}

EcRecorder::EcRecorder(std::unique_ptr<RecordingFile> recordingFile, std::chrono::milliseconds writingPause)
    : pause(writingPause)
    , file(std::move(recordingFile))
{
    run.count = 0;
    const auto clock = std::chrono::duration_cast<std::chrono::microseconds>(begun.time_since_epoch());
    file->setClockUs(static_cast<quint64>(clock.count()));
}

void EcRecorder::tap(Out32 &out, Inp32 &inp)
{
    tapped = this;
    realOut = std::exchange(out, recordedOut);
    realInp = std::exchange(inp, recordedInp);
}

void EcRecorder::noteLoad(EcRecord::LoadResult result)
{
    EcRecord record;
    record.kind = Kind::Load;
    record.result = result;
    noteEvent(record);
}

void EcRecorder::noteUnload()
{
    EcRecord record;
    record.kind = Kind::Unload;
    noteEvent(record);
}

void EcRecorder::flush()
{
    const std::lock_guard lock(mutex);
    endRun();
    file->flush();
}

void EcRecorder::flushWithin(std::chrono::milliseconds limit)
{
    const auto latest = Clock::now() + limit;
    std::unique_lock lock(mutex, std::try_to_lock);
    while (!lock.owns_lock() && Clock::now() < latest) {
        std::this_thread::sleep_for(lookPause);
        lock.try_lock();
    }
    if (!lock.owns_lock())
        return;
    endRun();
    file->flush();
}

// The time is that of the call: it may take the library long to return.
void EcRecorder::recordedOut(quint16 port, qint16 value)
{
    const auto at = Clock::now();
    tapped->realOut(port, value);
    tapped->note(Kind::Out, port, static_cast<quint16>(value), at);
}

qint16 EcRecorder::recordedInp(quint16 port)
{
    const auto at = Clock::now();
    const qint16 value = tapped->realInp(port);
    tapped->note(Kind::In, port, static_cast<quint16>(value), at);
    return value;
}

void EcRecorder::note(Kind kind, quint16 port, quint16 value, Clock::time_point at)
{
    const std::lock_guard lock(mutex);
    const quint32 thread = ownThread();
    const quint64 us = usOf(at);
    const bool goesOn =
        run.count > 0 && kind == Kind::In && run.port == port && run.value == value && run.thread == thread;
    if (goesOn) {
        ++run.count;
        run.lastUs = us;
    } else {
        endRun();
        run = {kind, port, value, us, us, 1, thread};
    }
    if (at - written < pause)
        return;
    written = at;
    endRun();
    file->flush();
}

void EcRecorder::noteEvent(const EcRecord &record)
{
    const std::lock_guard lock(mutex);
    endRun();
    EcRecord complete = record;
    complete.us = complete.lastUs = usOf(Clock::now());
    complete.thread = ownThread();
    add(complete);
    file->flush();
}

void EcRecorder::endRun()
{
    if (run.count > 0)
        add(run);
    run.count = 0;
}

// Accesses are numbered from 1, a read that repeats counts each time.
void EcRecorder::add(const EcRecord &record)
{
    file->add(lineOf(record), accesses + 1);
    if (record.isOfPort())
        accesses += record.count;
}

quint64 EcRecorder::usOf(Clock::time_point at) const
{
    return static_cast<quint64>(std::chrono::duration_cast<std::chrono::microseconds>(at - begun).count());
}

quint32 EcRecorder::ownThread()
{
    return threads.try_emplace(std::this_thread::get_id(), static_cast<quint32>(threads.size() + 1))
        .first->second;
}

} // namespace tarnRecording
