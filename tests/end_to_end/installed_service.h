#pragma once

#include "end_to_end/service_process.h"
#include "platform/windows/service_handle.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarnTest {

// What the manager has on record about a service.
struct ServiceRecord
{
    quint32 serviceType = 0;
    quint32 startType = 0;
    quint32 errorControl = 0;
    QString program;
    QString displayName;
    QString account;
    QString description;
};

// The service under the system's service manager, which knows only one of that name: that of an earlier test
// is removed at the start, and this one at the end.
class InstalledService : public ::testing::Test
{
protected:
    void SetUp() override { remove(); }
    void TearDown() override;

    // Runs the program with these arguments to its end; its exit code. The log then holds what it said.
    int command(const QStringList &arguments);
    void install();

    [[nodiscard]] bool isInstalled() const;
    [[nodiscard]] ServiceRecord record() const;
    // SERVICE_RUNNING and so on; 0 when there is no such service.
    [[nodiscard]] DWORD state() const { return status().dwCurrentState; }
    [[nodiscard]] SERVICE_STATUS_PROCESS status() const;
    bool waitForState(DWORD expected, int boundMs = 30000) const;

    // Asks the manager to start the service and waits until it runs and answers clients.
    [[nodiscard]] bool start();
    // Asks the manager without waiting.
    [[nodiscard]] bool requestStart() const;
    [[nodiscard]] bool control(DWORD code) const;
    // Milliseconds from the request to the report that the service has stopped; nothing if that never comes.
    [[nodiscard]] std::optional<qint64> stop() const;
    // Ends the service's process without asking.
    void kill();

    ServiceProcess program;

private:
    void remove();
    [[nodiscard]] tarnPlatform::ServiceHandle open() const;
};

} // namespace tarnTest
