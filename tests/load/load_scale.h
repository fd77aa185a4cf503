#pragma once

#include <QtGlobal>

#include <cstdint>

namespace tarnLoad {

// The service makes it before each message that it sends.
inline constexpr int messagePauseMs = 500;

// Within the test suite each test is quick; scripts/load sets TARN_LOAD for the long forms.
[[nodiscard]] inline bool isLong()
{
    return qEnvironmentVariable("TARN_LOAD") == QStringLiteral("long");
}

template <typename Number> [[nodiscard]] Number scaled(Number quick, Number longForm)
{
    return isLong() ? longForm : quick;
}

// So much more memory than before is no leak: allocators keep freed memory, and those of sanitizers most.
[[nodiscard]] inline double keptMib(double mib)
{
#ifdef TARN_SANITIZED
    return mib + 500;
#else
    return mib;
#endif
}

[[nodiscard]] inline std::uint64_t numberFromEnvironment(const char *name, std::uint64_t otherwise)
{
    bool isNumber = false;
    const qulonglong number = qEnvironmentVariable(name).toULongLong(&isNumber);
    return isNumber ? number : otherwise;
}

// Each run is the same unless TARN_LOAD_SEED says otherwise.
[[nodiscard]] inline std::uint64_t seed()
{
    return numberFromEnvironment("TARN_LOAD_SEED", 1);
}

} // namespace tarnLoad
