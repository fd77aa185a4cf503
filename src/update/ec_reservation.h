#pragma once

namespace tarnFirmwareUpdate {

// The EC as an update needs it: for the update alone. What takes it never gives the lock back: whatever has
// happened to the EC's firmware, all other EC traffic returns only with a restart of the service.

// Waits until nobody uses the EC and stops the monitor. Once taken it is taken; asked again, it does not
// wait. False when the process ends.
[[nodiscard]] bool reserveEcForUpdate();

// The update is over: nothing says any longer that the EC is being updated. Does nothing where nobody has
// reserved it.
void markEcUpdateOver();

} // namespace tarnFirmwareUpdate
