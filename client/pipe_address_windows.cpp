#include "pipe_address.h"

namespace tarn {

PipeAddress pipeAddress(const QString &name)
{
    constexpr QLatin1StringView folder(R"(\\.\pipe\)");
    constexpr qsizetype longest = 256; // the limit of CreateNamedPipe, with the folder
    const QString path = name.startsWith(folder) ? name : folder + name;
    return {path, path.size(), longest, QLatin1StringView("characters"),
        QLatin1StringView("Give --pipe a shorter name.")};
}

} // namespace tarn
