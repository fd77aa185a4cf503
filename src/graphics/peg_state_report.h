#pragma once

namespace tarnAccessoryManager {

// Log texts for the two writes of a GPU state report.
struct PegStateWords
{
    const char *dataDone; // null: not logged
    const char *dataFailed;
    const char *commandDone;
    const char *commandFailed;
};

// Reports the GPU's state (gpuDriverData) to the EC: the data byte, then the command, which the EC handles
// later. False when a write failed; the command is not written after failed data. The caller holds
// ecAccessMutex.
bool reportPegState(int gpuDriverData, const PegStateWords &words);

} // namespace tarnAccessoryManager
