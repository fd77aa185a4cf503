#pragma once

#include "support/log_capture.h"
#include "support/port_backend.h"
#include "support/run_folder.h"
#include "support/virtual_clock.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <deque>
#include <functional>

namespace tarnTest {

// Ports whose every answer the test decides, with a trace of accesses and waits: "status", "data 05",
// "command 92", "byte 06", "sleep 5".
class ScriptedPorts : public PortBackend
{
public:
    ScriptedPorts();
    ~ScriptedPorts() override;

    void out(std::uint16_t port, std::uint8_t value) override;
    std::uint8_t in(std::uint16_t port) override;

    // Takes the trace so far.
    QStringList takeTrace();
    [[nodiscard]] qsizetype count(const QString &step) const { return trace.count(step); }

    // OBF and IBF, and the data byte; the defaults: nothing waits, and 0x00. The other bits of the status are
    // anything, as on the real EC.
    std::function<std::uint8_t()> status = [] {
        return std::uint8_t(0);
    };
    std::function<std::uint8_t()> data = [] {
        return std::uint8_t(0);
    };

    RunFolder folder;
    VirtualClock clock;
    LogCapture log;

private:
    QStringList trace;
    std::uint8_t otherBits = 0;
};

class PortTest : public ::testing::Test
{
protected:
    ScriptedPorts ports;
};

} // namespace tarnTest
