#include "end_to_end/installed_service.h"

#include "platform/windows/wide_text.h"
#include "support/pipe_peer.h"

#include <QElapsedTimer>

namespace tarnTest {
namespace {

using tarnPlatform::ServiceFunctions;
using tarnPlatform::ServiceHandle;

const QString serviceName = QStringLiteral("Tarn Service");
constexpr int endTimeoutMs = 10000;

const ServiceFunctions &functions()
{
    return *ServiceFunctions::ofSystem();
}

// What the manager writes into a buffer of its own choice of size.
template <typename Query> std::vector<BYTE> answerOf(const Query &query)
{
    DWORD size = 0;
    query(nullptr, 0, &size);
    std::vector<BYTE> buffer(size);
    if (!query(buffer.data(), size, &size))
        buffer.clear();
    return buffer;
}

} // namespace

void InstalledService::TearDown()
{
    remove();
    EXPECT_FALSE(isInstalled());
}

int InstalledService::command(const QStringList &arguments)
{
    EXPECT_TRUE(program.launch(arguments));
    EXPECT_TRUE(program.waitForEnd());
    return program.process.exitCode();
}

void InstalledService::install()
{
    ASSERT_EQ(command({QStringLiteral("-install")}), 0);
    ASSERT_TRUE(isInstalled());
}

bool InstalledService::isInstalled() const
{
    return static_cast<bool>(open());
}

ServiceRecord InstalledService::record() const
{
    const ServiceHandle service = open();
    const auto configuration = answerOf([&](BYTE *buffer, DWORD size, DWORD *needed) {
        return functions().queryConfig(
            service.get(), reinterpret_cast<QUERY_SERVICE_CONFIGW *>(buffer), size, needed);
    });
    const auto description = answerOf([&](BYTE *buffer, DWORD size, DWORD *needed) {
        return functions().queryConfig2(service.get(), SERVICE_CONFIG_DESCRIPTION, buffer, size, needed);
    });
    if (configuration.empty() || description.empty())
        return {};
    const auto *entry = reinterpret_cast<const QUERY_SERVICE_CONFIGW *>(configuration.data());
    const auto *text = reinterpret_cast<const SERVICE_DESCRIPTIONW *>(description.data());
    return {entry->dwServiceType, entry->dwStartType, entry->dwErrorControl,
        QString::fromWCharArray(entry->lpBinaryPathName), QString::fromWCharArray(entry->lpDisplayName),
        QString::fromWCharArray(entry->lpServiceStartName), QString::fromWCharArray(text->lpDescription)};
}

SERVICE_STATUS_PROCESS InstalledService::status() const
{
    SERVICE_STATUS_PROCESS status = {};
    DWORD needed = 0;
    const ServiceHandle service = open();
    if (service)
        QueryServiceStatusEx(
            service.get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE *>(&status), sizeof status, &needed);
    return status;
}

bool InstalledService::waitForState(DWORD expected, int boundMs) const
{
    return waitUntil([&] { return state() == expected; }, boundMs);
}

bool InstalledService::start()
{
    return requestStart() && waitForState(SERVICE_RUNNING);
}

bool InstalledService::requestStart() const
{
    return functions().startService(open().get(), 0, nullptr);
}

bool InstalledService::control(DWORD code) const
{
    SERVICE_STATUS ignored;
    return functions().controlService(open().get(), code, &ignored);
}

std::optional<qint64> InstalledService::stop() const
{
    QElapsedTimer timer;
    timer.start();
    if (!control(SERVICE_CONTROL_STOP) || !waitForState(SERVICE_STOPPED, endTimeoutMs))
        return std::nullopt;
    return timer.elapsed();
}

void InstalledService::kill()
{
    const DWORD id = status().dwProcessId;
    const HANDLE process = id ? OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id) : nullptr;
    if (!process)
        return;
    TerminateProcess(process, 1);
    program.noteKill();
    WaitForSingleObject(process, endTimeoutMs);
    CloseHandle(process);
}

void InstalledService::remove()
{
    if (!isInstalled())
        return;
    if (state() != SERVICE_STOPPED && !stop()) {
        kill();
        waitForState(SERVICE_STOPPED, endTimeoutMs);
    }
    functions().deleteService(open().get());
    waitUntil([this] { return !isInstalled(); }, endTimeoutMs);
}

ServiceHandle InstalledService::open() const
{
    const ServiceHandle manager(functions(), functions().openManager(nullptr, nullptr, SC_MANAGER_CONNECT));
    return {functions(),
        functions().openService(manager.get(), tarnPlatform::wideText(serviceName), SERVICE_ALL_ACCESS)};
}

} // namespace tarnTest
