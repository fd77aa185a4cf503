#include "platform/processes.h"

#include "support/pipe_peer.h"
#include "support/resource_limit.h"
#include "support/run_folder.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>

using tarnPlatform::ProcessList;

namespace {

QStringList pathsOf(const char *name)
{
    return ProcessList::system().pathsOf(QString::fromLatin1(name));
}

// A copy of this process under another name, killed with the object.
class NamedCopy
{
public:
    template <typename Life> NamedCopy(const char *name, const Life &life)
    {
        int ready[2] = {};
        [[maybe_unused]] int failed = ::pipe(ready);
        id = ::fork();
        if (id == 0) {
            ::prctl(PR_SET_NAME, name);
            life();
            [[maybe_unused]] auto written = ::write(ready[1], "x", 1);
            for (;;)
                ::pause();
        }
        ::close(ready[1]);
        char byte = 0;
        [[maybe_unused]] auto got = ::read(ready[0], &byte, 1); // or end of file
        ::close(ready[0]);
    }
    ~NamedCopy()
    {
        ::kill(id, SIGKILL);
        ::waitpid(id, nullptr, 0);
    }
    NamedCopy(const NamedCopy &) = delete;
    NamedCopy &operator=(const NamedCopy &) = delete;

    pid_t id = -1;
};

bool hasEnded(const NamedCopy &copy)
{
    siginfo_t info = {};
    return ::waitid(P_PID, static_cast<id_t>(copy.id), &info, WEXITED | WNOHANG | WNOWAIT) == 0
        && info.si_pid == copy.id;
}

} // namespace

class ProcessPaths : public ::testing::Test
{
protected:
    ~ProcessPaths() override
    {
        process.kill();
        process.waitForFinished();
    }
    void startCopy(const char *of, const QString &name, const QStringList &arguments)
    {
        ASSERT_TRUE(QFile::copy(QFileInfo(of).canonicalFilePath(), folder.path(name)));
        process.start(folder.path(name), arguments);
        ASSERT_TRUE(process.waitForStarted());
    }
    void writeScript(const QString &name)
    {
        folder.write(name, "#!/bin/sh\nread end\n");
        QFile(folder.path(name)).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QString canonical(const QString &name) const
    {
        return QFileInfo(folder.path(name)).canonicalFilePath();
    }

    tarnTest::RunFolder folder;
    QProcess process;
};

TEST_F(ProcessPaths, AreThoseOfProgramsInAnySpelling)
{
    startCopy("/bin/sleep", "tarn-Program-with-a-long-name", {"30"});
    const QStringList expected {canonical("tarn-Program-with-a-long-name")};
    EXPECT_TRUE(tarnTest::waitUntil([&] { return pathsOf("TARN-program-with-a-long-name") == expected; }));
    EXPECT_TRUE(pathsOf("tarn-Program").isEmpty());
    process.kill();
    process.waitForFinished();
    EXPECT_TRUE(pathsOf("tarn-Program-with-a-long-name").isEmpty());
}

// An update puts a new file in the place of one that runs.
TEST_F(ProcessPaths, AreKeptWhenTheFileGoes)
{
    startCopy("/bin/sleep", "tarn-replaced", {"30"});
    const QStringList expected {canonical("tarn-replaced")};
    EXPECT_TRUE(tarnTest::waitUntil([&] { return pathsOf("tarn-replaced") == expected; }));
    ASSERT_TRUE(QFile::remove(folder.path("tarn-replaced")));
    EXPECT_EQ(pathsOf("tarn-replaced"), expected);
}

TEST_F(ProcessPaths, AreThoseOfScriptsAndNotOfTheirInterpreters)
{
    writeScript("tarn-script-with-a-long-name");
    process.start(folder.path("tarn-script-with-a-long-name"), QStringList());
    const QStringList expected {folder.path("tarn-script-with-a-long-name")};
    EXPECT_TRUE(tarnTest::waitUntil([&] { return pathsOf("tarn-script-with-a-long-name") == expected; }));
    EXPECT_TRUE(pathsOf("tarn-script-wit").isEmpty()); // the name as the process carries it, cut short
}

TEST_F(ProcessPaths, OfScriptsMayBeRelative)
{
    writeScript("tarn-relative");
    process.setWorkingDirectory(folder.path("."));
    process.start("/bin/sh", {"-c", "exec ./tarn-relative"});
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !pathsOf("tarn-relative").isEmpty(); }));
    EXPECT_EQ(QFileInfo(pathsOf("tarn-relative").first()).canonicalFilePath(), canonical("tarn-relative"));
}

TEST_F(ProcessPaths, AreNotThoseOfWindowsPrograms)
{
    startCopy("/bin/sh", "wine64-shell",
        {"-c", "printf tarn-windows >/proc/$$/comm; echo named; read end", "tarn-windows"});
    ASSERT_TRUE(process.waitForReadyRead());
    EXPECT_TRUE(pathsOf("tarn-windows").isEmpty());
}

TEST_F(ProcessPaths, OfAnotherProgramThatOnlyCallsItselfSoAreNotListed)
{
    const NamedCopy copy("tarn-pretender", [] {});
    EXPECT_TRUE(pathsOf("tarn-pretender").isEmpty());
}

TEST_F(ProcessPaths, AreEmptyWhereTheyCannotBeRead)
{
    const NamedCopy copy("tarn-unread", [] { ::prctl(PR_SET_DUMPABLE, 0); });
    const tarnTest::Unprivileged unprivileged;
    EXPECT_EQ(pathsOf("tarn-unread"), QStringList(QString()));
}

TEST_F(ProcessPaths, AreOneThatCannotBeReadWhereNoProcessCan)
{
    const tarnTest::DescriptorLimit limit(0);
    EXPECT_EQ(pathsOf("tarn-nobody"), QStringList(QString()));
}

// The arguments of its command can be read; they name a file below a folder that cannot be read.
TEST_F(ProcessPaths, AreNotTakenAsRelativeToAnotherProcessesFolder)
{
    writeScript("tarn-elsewhere");
    process.setWorkingDirectory(folder.path("."));
    process.start("/bin/sh", {"-c", "exec ./tarn-elsewhere"});
    ASSERT_TRUE(tarnTest::waitUntil([&] { return !pathsOf("tarn-elsewhere").isEmpty(); }));
    const tarnTest::Unprivileged unprivileged;
    EXPECT_EQ(pathsOf("tarn-elsewhere"), QStringList(QString()));
}

TEST_F(ProcessPaths, OfAZombieProcessAreNotListed)
{
    const NamedCopy copy("tarn-zombie", [] { ::_exit(0); });
    ASSERT_TRUE(tarnTest::waitUntil([&copy] { return hasEnded(copy); }));
    EXPECT_TRUE(pathsOf("tarn-zombie").isEmpty());
}

// A process has lost its program before it counts as ended, for longer the more memory it has to give back.
TEST_F(ProcessPaths, OfAProcessThatIsEndingAreNotListed)
{
    const NamedCopy copy("tarn-ending", [] {
        constexpr std::size_t bytes = 256U << 20;
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    });
    ::kill(copy.id, SIGKILL);
    while (!hasEnded(copy))
        EXPECT_EQ(pathsOf("tarn-ending"), QStringList());
}
