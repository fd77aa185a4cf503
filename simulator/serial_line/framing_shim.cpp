#include <dlfcn.h>
#include <termios.h>

// Preloaded into the flasher. The kernel drops the parity and similar settings of a pseudo-terminal. The
// flasher reads its settings back and would refuse the port, so tcgetattr() returns the ones that it set
// last.
namespace {

constexpr tcflag_t framing = CSIZE | CSTOPB | PARENB | PARODD | CRTSCTS;

tcflag_t askedFor = 0;
bool isKnown = false;

template <typename Function> Function systemFunction(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int tcsetattr(
    int terminal, int when, const termios *settings) noexcept
{
    static const auto original = systemFunction<int (*)(int, int, const termios *)>("tcsetattr");
    askedFor = settings->c_cflag & framing;
    isKnown = true;
    return original(terminal, when, settings);
}

extern "C" __attribute__((visibility("default"))) int tcgetattr(int terminal, termios *settings) noexcept
{
    static const auto original = systemFunction<int (*)(int, termios *)>("tcgetattr");
    const int result = original(terminal, settings);
    if (result == 0 && isKnown)
        settings->c_cflag = (settings->c_cflag & ~framing) | askedFor;
    return result;
}
