#pragma once

namespace tarnPlatform {

// Ends the process at once with this code: no destructor, no handler of the end, and no wait for any thread,
// whatever it holds. What is still in the buffers of the C library is lost.
[[noreturn]] void exitAtOnce(int code);

} // namespace tarnPlatform
