#include "platform/sockets.h"

#include "support/resource_limit.h"
#include "support/run_folder.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// A named socket that is closed with the object; its socket file stays.
class NamedSocket
{
public:
    NamedSocket(int type, const QString &path)
        : descriptor(::socket(AF_UNIX, type, 0))
    {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        std::copy(name.begin(), name.end(), address.sun_path);
        EXPECT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    }
    ~NamedSocket() { ::close(descriptor); }
    NamedSocket(const NamedSocket &) = delete;
    NamedSocket &operator=(const NamedSocket &) = delete;

    const int descriptor;
};

} // namespace

class LeftoverSocket : public ::testing::Test
{
protected:
    [[nodiscard]] static bool isThereAfterRemoval()
    {
        errno = ECONNREFUSED; // as it may be from an earlier call
        tarnPlatform::removeLeftoverSocket("socket");
        return QFileInfo::exists(folderOfSockets() + "/socket");
    }
    [[nodiscard]] static QString folderOfSockets() { return qEnvironmentVariable("TMPDIR"); }

    tarnTest::RunFolder folder;
    const QString socketPath = folderOfSockets() + "/socket";
};

TEST_F(LeftoverSocket, OfAServerThatHasGoneIsRemoved)
{
    {
        const NamedSocket server(SOCK_STREAM, socketPath);
    }
    EXPECT_FALSE(isThereAfterRemoval());
}

TEST_F(LeftoverSocket, OfOneThatListensStaysWithoutAConnectionToIt)
{
    const NamedSocket server(SOCK_STREAM | SOCK_NONBLOCK, socketPath);
    ASSERT_EQ(::listen(server.descriptor, 1), 0);
    EXPECT_TRUE(isThereAfterRemoval());
    EXPECT_EQ(::accept(server.descriptor, nullptr, nullptr), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(LeftoverSocket, OfOneThatTakesDatagramsStays)
{
    const NamedSocket receiver(SOCK_DGRAM, socketPath);
    EXPECT_TRUE(isThereAfterRemoval());
}

TEST_F(LeftoverSocket, IsNoFileOfAnotherKind)
{
    folder.write("socket", "kept");
    EXPECT_TRUE(isThereAfterRemoval());
}

TEST_F(LeftoverSocket, StaysWhenNoSocketCanBeOpenedToProbeIt)
{
    {
        const NamedSocket server(SOCK_STREAM, socketPath);
    }
    const tarnTest::DescriptorLimit limit(0);
    EXPECT_TRUE(isThereAfterRemoval());
}
