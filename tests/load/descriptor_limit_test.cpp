#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"

#include <memory>

#include <sys/resource.h>

using tarnLoad::report;
using tarnTest::PipePeer;
using tarnTest::ServiceClient;

namespace {

constexpr rlim_t descriptors = 100;
constexpr int crowd = 150;

} // namespace

// A system that gives a process only so many sockets, and clients that take them all.
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
};

TEST_F(DescriptorLimit, ReachedByACrowdDoesNotCloseTheDoorForGood)
{
    const auto before = figures();
    for (int round = 0; round < 2; ++round) {
        std::vector<std::unique_ptr<PipePeer>> peers;
        for (int number = 0; number < crowd; ++number) {
            peers.push_back(std::make_unique<PipePeer>());
            peers.back()->socket.connectToServer(QStringLiteral("tarnPipe"));
        }
        tarnTest::waitUntil([this] { return figures().handles >= static_cast<int>(descriptors); }, 5000);
        report("crowd beyond the descriptors",
            QStringLiteral("%1 clients, %2 descriptors taken").arg(crowd).arg(figures().handles));
        peers.clear();
        ServiceClient normal;
        ASSERT_TRUE(tarnTest::waitUntil([&normal] { return normal.connectToService(); }, 20000))
            << "round " << round;
        EXPECT_GE(msUntilObeyed(normal), 0);
        EXPECT_EQ(normal.answer("getAccessoryType"), "disconnected");
        normal.leave();
    }
    expectAsIdleAs(before, "crowd beyond the descriptors");
}
