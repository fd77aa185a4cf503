#include "device/ec_registers.h"
#include "end_to_end/service_process.h"
#include "end_to_end/watched_program.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <utility>

using namespace tarnDeviceInfos;
using tarnTest::ServiceProcess;
using tarnTest::WatchedProgram;

namespace {

// The example lies beside the service, because there are the libraries that it needs on Windows.
QString example(const ServiceProcess &service, const QString &name)
{
    const QString given = qEnvironmentVariable("TARN_EXAMPLES_FOLDER");
    const QDir built(given.isEmpty() ? QStringLiteral(TARN_EXAMPLES_FOLDER) : given);
    const QString file = name + QStringLiteral(TARN_PROGRAM_SUFFIX);
    if (!QFile::copy(built.filePath(file), service.path(file)))
        ADD_FAILURE() << "no " << built.filePath(file).toStdString() << "; scripts/build_examples makes it";
    return service.path(file);
}

QString textOf(const QString &name)
{
    const QString given = qEnvironmentVariable("TARN_DOCS_FOLDER");
    QFile file((given.isEmpty() ? QStringLiteral(TARN_DOCS_FOLDER) : given) + "/../" + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The code in this language on the page of the client library.
QStringList codeOnPage(const QString &language)
{
    QStringList parts = textOf("docs/client-library.md").split("\n```" + language + '\n');
    parts.removeFirst();
    for (QString &part : parts)
        part.truncate(part.indexOf("```"));
    return parts;
}

// Asks for the profile each second.
class BatteryWatcher : public WatchedProgram
{
public:
    explicit BatteryWatcher(const ServiceProcess &service, const QStringList &options = {})
        : WatchedProgram(service, example(service, QStringLiteral("battery_watcher")),
            QStringList {"--every", "1"} + options)
    { }
};

} // namespace

TEST(Examples, TheBatteryWatcherShowsWhatChangesAndOutlivesTheService)
{
    ServiceProcess service;
    BatteryWatcher watcher(service); // before the service is there
    ASSERT_TRUE(watcher.runs());
    ASSERT_TRUE(watcher.shows("waiting: no service runs"));
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(watcher.shows("connected"));
    ASSERT_TRUE(
        watcher.showsAll({"accessory disconnected", "battery 80 %", "charging yes", "profile balance"}));

    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(watcher.shows("accessory k_vane"));
    service.computer().setHostBattery(42);
    ASSERT_TRUE(watcher.shows("battery 42 %"));
    service.computer().setHostCharging(0);
    ASSERT_TRUE(watcher.shows("charging no"));
    service.computer().setTarnPowerMode(TARN_POWER_MODE_LOW);
    ASSERT_TRUE(watcher.shows("profile low"));

    service.kill();
    ASSERT_TRUE(watcher.showsAll({"waiting: the service has closed the connection", "battery unknown",
        "charging unknown", "accessory unknown"}));
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(watcher.shows("connected"));
    ASSERT_TRUE(watcher.showsAll({"accessory k_vane", "battery 42 %", "charging no", "profile low"}));
    EXPECT_EQ(service.stop(), 0);
}

TEST(Examples, TheBatteryWatcherTellsToLeaveTheGpuThatTheUserReleases)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    BatteryWatcher watcher(service);
    ASSERT_TRUE(watcher.shows("accessory disconnected"));
    service.attach(ACCESSORY_GRAPHICS);
    ASSERT_TRUE(watcher.shows("accessory graphics"));
    ASSERT_TRUE(service.waitForLog("GraphicsActive_log: Successed to active graphics."));
    service.computer().desktop().setAnswer(1);
    ASSERT_TRUE(service.computer().pressGpuKey());
    ASSERT_TRUE(watcher.shows("the graphics box is released: stop using its GPU now"));
    EXPECT_EQ(service.stop(), 0);
}

TEST(Examples, TheBatteryWatcherWaitsForAServiceUntilItsTimeIsOver)
{
    const ServiceProcess unstarted; // its folder has no socket
    BatteryWatcher watcher(unstarted, {"--for", "1"});
    ASSERT_TRUE(watcher.runs());
    EXPECT_EQ(watcher.end(), 0);
    EXPECT_TRUE(watcher.shows("waiting: no service runs"));
}

TEST(Examples, AreWhatThePageOfTheClientLibraryShows)
{
    for (const auto &[language, file] :
        {std::pair("cpp", "main.cpp"), std::pair("cmake", "CMakeLists.txt")}) {
        const QStringList blocks = codeOnPage(language);
        EXPECT_FALSE(blocks.isEmpty()) << language;
        for (const QString &code : blocks)
            EXPECT_TRUE(textOf(QStringLiteral("examples/cpp/") + file).contains(code)) << code.toStdString();
    }
}
