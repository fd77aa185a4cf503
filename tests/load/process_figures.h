#pragma once

#include <QtGlobal>

namespace tarnLoad {

// What a process costs, as its system counts it.
struct ProcessFigures
{
    double memoryMib = 0; // resident; on Windows private
    double peakMib = 0;
    qint64 cpuMs = 0; // since its start
    int threads = 0; // 0 where it is not told
    int handles = 0; // file descriptors; on Windows handles
};

[[nodiscard]] ProcessFigures figuresOf(qint64 processId);

} // namespace tarnLoad
