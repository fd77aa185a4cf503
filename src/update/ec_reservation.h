#pragma once

namespace tarnFirmwareUpdate {

// Reserves the EC for one update. The lock is never released: whatever has happened to the EC's firmware,
// all other EC traffic comes back only with a restart of the service.

// Waits until the EC is free, takes it and stops the monitor. A further call does not wait. False when the
// process ends.
[[nodiscard]] bool reserveEcForUpdate();

// The update is over: the EC is no longer marked as being updated. Does nothing when the EC was not reserved.
void markEcUpdateOver();

} // namespace tarnFirmwareUpdate
