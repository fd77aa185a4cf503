#pragma once

#include <QString>

#include <functional>

namespace tarnPlatform {

// While this object lives, a fatal message is told to somebody before it ends the process. All messages go
// where they went before. One object at a time.
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
