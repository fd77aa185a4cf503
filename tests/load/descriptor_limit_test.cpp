#include "device/ec_registers.h"
#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"

#include <QFileInfo>

#include <memory>

#include <sys/resource.h>

using tarnLoad::report;
using tarnTest::PipePeer;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

constexpr rlim_t descriptors = 300;
constexpr int crowd = 350;
const QString turnedAway = QStringLiteral("too many clients, the newest one is turned away");

} // namespace

// A process with a limit on its descriptors, and clients that use them up.
class DescriptorLimit : public tarnLoad::LoadedService
{
protected:
    void SetUp() override
    {
        service.process.setChildProcessModifier([] {
            const rlimit limit {descriptors, descriptors};
            ::setrlimit(RLIMIT_NOFILE, &limit);
        });
        LoadedService::SetUp();
    }

    [[nodiscard]] rlim_t lowestFreeDescriptor() const
    {
        rlim_t number = 0;
        while (QFileInfo(QStringLiteral("/proc/%1/fd/%2").arg(service.process.processId()).arg(number))
                   .isSymLink())
            ++number;
        return number;
    }

    // From now on the running service gets no descriptor with this number or a higher one.
    void setLimit(rlim_t count)
    {
        const rlimit limit {count, descriptors};
        ASSERT_EQ(
            ::prlimit(static_cast<pid_t>(service.process.processId()), RLIMIT_NOFILE, &limit, nullptr), 0);
    }
};

// A thread without a descriptor for its event loop would end the process, so some are kept for threads.
TEST_F(DescriptorLimit, ClientsAreTurnedAwayBeforeTheyTakeAllDescriptors)
{
    const auto before = figures();
    service.attach(tarnDeviceInfos::ACCESSORY_KVANE);
    ServiceClient first;
    ASSERT_TRUE(first.connectToService());
    ASSERT_TRUE(first.waitForNotification("changeAccessoryType", "k_vane"));
    ASSERT_EQ(first.answer("requestEnterMcuUpdateMode"), "successed");

    std::vector<std::unique_ptr<PipePeer>> peers;
    for (int number = 0; number < crowd; ++number) {
        peers.push_back(std::make_unique<PipePeer>());
        ASSERT_TRUE(peers.back()->connectToService()) << number;
    }
    ASSERT_TRUE(waitUntil([&] { return service.logCount(turnedAway) > 0; }));
    // Each accepted client takes a thread that waits for the EC, as long as there are threads.
    for (const auto &peer : peers)
        peer->write(R"({"cmd":"getHardwareVersion"})");
    EXPECT_TRUE(waitUntil([&] { return figures().threads > before.threads + 60; }));
    report("crowd beyond the descriptors",
        QStringLiteral("%1 clients, %2 turned away, %3 of %4 descriptors taken")
            .arg(crowd)
            .arg(service.logCount(turnedAway))
            .arg(figures().handles)
            .arg(descriptors));
    first.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
    EXPECT_TRUE(service.waitForLog("Enter Leave Mcu Update Mode", 1, 10000));
    peers.clear();
    first.leave();

    ServiceClient normal;
    ASSERT_TRUE(waitUntil([&normal] { return normal.connectToService(); }, 20000));
    EXPECT_GE(msUntilObeyed(normal), 0); // behind all of them, at the EC
    normal.leave();
    expectAsIdleAs(before, "crowd beyond the descriptors");
}

TEST_F(DescriptorLimit, EndsTheListeningOnlyUntilADescriptorIsFree)
{
    ServiceClient first;
    ASSERT_TRUE(first.connectToService());
    ASSERT_EQ(first.answer("getAccessoryType"), "disconnected");
    const int taken = figures().handles;
    setLimit(lowestFreeDescriptor());
    PipePeer tooLate;
    tooLate.socket.connectToServer(QStringLiteral("tarnPipe"));
    ASSERT_TRUE(waitUntil([&] { return figures().handles < taken; })) << "the service still listens";
    setLimit(descriptors);
    first.leave();

    ServiceClient normal;
    ASSERT_TRUE(waitUntil([&normal] { return normal.connectToService(); }, 20000));
    expectObeyedAtOnce(normal);
    EXPECT_EQ(normal.answer("getAccessoryType"), "disconnected");
    normal.leave();
}
