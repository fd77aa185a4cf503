#pragma once

namespace tarnAccessoryManager {

// The log's words around the two writes of a GPU state report.
struct PegStateWords
{
    const char *dataDone; // null: not logged
    const char *dataFailed;
    const char *commandDone;
    const char *commandFailed;
};

// Tells the EC the GPU's state (gpuDriverData): the data byte, then the command, which the EC takes on its
// own time. False when a write failed; the command is not written after failed data. ecAccessMutex is held.
bool reportPegState(int gpuDriverData, const PegStateWords &words);

} // namespace tarnAccessoryManager
