#pragma once

#include <QString>

#include <functional>

namespace tarnPlatform {

// While this object lives, a fatal message is also reported to the given function before it ends the process.
// All messages still go to the previous handler. One object at a time.
class FatalMessageWatch
{
public:
    using Report = std::function<void(const QString &message)>;

    explicit FatalMessageWatch(const Report &report);
    ~FatalMessageWatch();
    FatalMessageWatch(const FatalMessageWatch &) = delete;
    FatalMessageWatch &operator=(const FatalMessageWatch &) = delete;
};

} // namespace tarnPlatform
