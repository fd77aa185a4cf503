#include "graphics_fixture.h"

#include "support/process_ending.h"

#include "platform/device_manager.h"
#include "platform/process_end.h"

#include <utility>

using namespace tarnDeviceInfos;
using tarnSimulator::DeviceKind;
using tarnSimulator::Fault;

namespace {

constexpr char prefix[] = "GraphicsActive_log & GraphicsDisengaged_log: ";

QStringList stateLines(int installed)
{
    return {QString("%1get gpu is exist or not:  1 .").arg(prefix),
        QString("%1get gpu driver is install or not:  %2 .").arg(prefix).arg(installed)};
}

QString activeLine(int active)
{
    return QString("%1get gpu is active or not:  %2 .").arg(prefix).arg(active);
}

QString driverDataLine(int gpuDriverData)
{
    return QString("%1gpuDriverData is  %2 .").arg(prefix).arg(gpuDriverData);
}

// One stopped GPU, and a note of how much room each text was given.
class NotingDevices : public tarnPlatform::DeviceManager
{
public:
    NotingDevices() { replace(this); }
    ~NotingDevices() override { replace(nullptr); }
    NotingDevices(const NotingDevices &) = delete;
    NotingDevices &operator=(const NotingDevices &) = delete;

    std::unique_ptr<tarnPlatform::DeviceList> displayAdapters(Text text) override
    {
        rooms << (text == Text::Ansi ? "ansi adapters" : "wide adapters");
        return std::make_unique<List>(rooms);
    }
    std::unique_ptr<tarnPlatform::DeviceList> allDevices() override
    {
        rooms << "all devices";
        return std::make_unique<List>(rooms);
    }
    QStringList taken() { return std::exchange(rooms, {}); }

private:
    class Gpu : public tarnPlatform::Device
    {
    public:
        explicit Gpu(QStringList &notes)
            : rooms(notes)
        { }
        std::optional<QByteArray> ansiText(tarnPlatform::DeviceProperty property, int bytes) override
        {
            const bool isDescription = property == tarnPlatform::DeviceProperty::Description;
            rooms << QString(isDescription ? "description %1" : "hardware ids %1").arg(bytes);
            // As the system gives them: several texts, each ended by a zero.
            return isDescription ? QByteArray("NVIDIA GeForce RTX 4060 Ti")
                                 : QByteArray("ROOT\\DISPLAY\0PCI\\VEN_10DE&DEV_2803\0", 35);
        }
        std::optional<QString> wideDescription(int bytes) override
        {
            rooms << QString("wide description %1").arg(bytes);
            return "NVIDIA High Definition Audio";
        }
        std::optional<QString> instanceId(int characters) override
        {
            rooms << QString("instance id %1").arg(characters);
            return "PCI\\VEN_10DE&DEV_2803\\1";
        }
        std::optional<tarnPlatform::DeviceStatus> status() override { return tarnPlatform::DeviceStatus {}; }
        bool enable() override { return true; }
        bool disable() override { return true; }
        bool changeByInstaller(tarnPlatform::DeviceChange) override { return true; }

    private:
        QStringList &rooms;
    };
    class List : public tarnPlatform::DeviceList
    {
    public:
        explicit List(QStringList &notes)
            : gpu(notes)
        { }
        tarnPlatform::Device *next() override { return std::exchange(passed, true) ? nullptr : &gpu; }

    private:
        Gpu gpu;
        bool passed = false;
    };

    QStringList rooms;
};

} // namespace

class GpuState : public tarnTest::GraphicsTest
{ };

TEST_F(GpuState, IsActiveWithARunningGpu)
{
    setCondition("gpu", true, noProblem);
    EXPECT_EQ(manager->getGpuDriverData(), gpuActive);
    EXPECT_EQ(machine.log.lines(), stateLines(1) + QStringList({activeLine(1), driverDataLine(gpuActive)}));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.state->devices.listsOpened, 2U);
}

TEST_F(GpuState, IsNotStartedWithADisabledGpu)
{
    EXPECT_EQ(manager->getGpuDriverData(), gpuNotStarted);
    EXPECT_EQ(
        machine.log.lines(), stateLines(1) + QStringList({activeLine(0), driverDataLine(gpuNotStarted)}));
}

TEST_F(GpuState, IsWithoutDriverUnderAnotherNameWhateverTheHardwareIds)
{
    rename("gpu", "Microsoft Basic Display Adapter");
    EXPECT_EQ(manager->getGpuDriverData(), gpuWithoutDriver);
    EXPECT_EQ(machine.log.lines(), stateLines(0) + QStringList({driverDataLine(gpuWithoutDriver)}));
    EXPECT_EQ(machine.state->devices.listsOpened, 1U);
}

TEST_F(GpuState, ANameMayHoldMoreThanTheAdaptersOwn)
{
    rename("gpu", "2nd NVIDIA GeForce RTX 4060 Ti (GA)");
    EXPECT_EQ(manager->getGpuDriverData(), gpuNotStarted);
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_EQ(manager->getGpuDriverData(), gpuActive);
    EXPECT_EQ(manager->disableGpu(), 0);
    EXPECT_FALSE(device("gpu").started);
}

TEST_F(GpuState, TheFirstGpuThatCanBeAskedDecides)
{
    addDevice("second", DeviceKind::Display, "NVIDIA GeForce RTX 4060", "PCI\\VEN_10DE&DEV_2882");
    ASSERT_TRUE(device("second").started);
    EXPECT_EQ(manager->getGpuDriverData(), gpuNotStarted);
    setCondition("gpu", true, noProblem);
    setCondition("second", false, disabledDevice);
    EXPECT_EQ(manager->getGpuDriverData(), gpuActive);
}

TEST_F(GpuState, NamesAreComparedCaseSensitively)
{
    rename("gpu", "nvidia geforce rtx 4060 ti");
    EXPECT_EQ(manager->getGpuDriverData(), gpuWithoutDriver);
}

TEST_F(GpuState, IsUnknownWhenTheAdaptersCannotBeListed)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_EQ(manager->getGpuDriverData(), gpuStateUnknown);
    EXPECT_EQ(machine.log.lines(), stateLines(-1));
}

TEST_F(GpuState, IsUnknownWhenTheAdaptersCannotBeListedASecondTime)
{
    machine.faults().switchOn(Fault::FailDeviceList, 1, 1);
    EXPECT_EQ(manager->getGpuDriverData(), gpuStateUnknown);
    EXPECT_EQ(machine.log.lines(), stateLines(1) + QStringList({activeLine(-1)}));
}

// What hides an installed GPU from the second look.
struct Obstacle
{
    const char *name;
    Fault fault;
    std::uint32_t skip; // the first look reads the description as well
};

class HiddenGpu : public GpuState, public ::testing::WithParamInterface<Obstacle>
{ };

TEST_P(HiddenGpu, IsAnErrorAndNotAnInactiveGpu)
{
    fail(GetParam().fault, "gpu", GetParam().skip);
    EXPECT_EQ(manager->getGpuDriverData(), gpuStateUnknown);
    EXPECT_EQ(machine.log.lines(), stateLines(1) + QStringList({activeLine(-2)}));
}

INSTANTIATE_TEST_SUITE_P(Obstacles, HiddenGpu,
    ::testing::Values(Obstacle {"HardwareId", Fault::FailDeviceHardwareId, 0},
        Obstacle {"Description", Fault::FailDeviceDescription, 1},
        Obstacle {"Status", Fault::FailDeviceStatus, 0}),
    [](const auto &obstacle) { return std::string(obstacle.param.name); });

TEST_F(GpuState, AGpuOfAnotherMakerWithTheInstalledNameIsAnError)
{
    tarnSimulator::Device gpu = device("gpu");
    gpu.hardwareId = "PCI\\VEN_8086&DEV_2803";
    devices().store(slot("gpu"), gpu);
    EXPECT_EQ(manager->getGpuDriverData(), gpuStateUnknown);
}

TEST_F(GpuState, AnAmdAdapterOfTheNumberIsTakenToo)
{
    setCondition("gpu", true, noProblem);
    addDevice("other", DeviceKind::Display, "Radeon 4060", "PCI\\VEN_1002&DEV_0001");
    fail(Fault::FailDeviceStatus, "gpu");
    EXPECT_EQ(manager->getGpuDriverData(), gpuActive);
}

TEST_F(GpuState, ABoxThatHasGoneTakesItsGpuWithIt)
{
    machine.computer.detach();
    EXPECT_EQ(manager->getGpuDriverData(), gpuWithoutDriver);
}

TEST_F(GpuState, AnAdapterWhoseDescriptionCannotBeReadIsSkipped)
{
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceDescription, "graphics");
    EXPECT_EQ(manager->getGpuDriverData(), gpuActive);
    EXPECT_EQ(manager->disableGpu(), 0);
    EXPECT_FALSE(device("gpu").started);
    fail(Fault::FailDeviceDescription, "gpu");
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_FALSE(device("gpu").started);
}

TEST_F(GpuState, EachTextHasTheRoomThatDriversReckonWith)
{
    NotingDevices noted;
    EXPECT_EQ(manager->getGpuDriverData(), gpuNotStarted);
    EXPECT_EQ(noted.taken(),
        QStringList(
            {"ansi adapters", "description 4096", "ansi adapters", "hardware ids 4096", "description 256"}));
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_EQ(noted.taken(), QStringList({"ansi adapters", "description 256"}));
    EXPECT_EQ(manager->disableGpu(), 0);
    EXPECT_EQ(noted.taken(), QStringList({"ansi adapters", "description 256"}));
    EXPECT_TRUE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(noted.taken(), QStringList({"wide adapters", "instance id 200"}));
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_EQ(noted.taken(), QStringList({"all devices", "wide description 512"}));
}

class NvidiaCheck : public GpuState
{
protected:
    const QString gpuId = "\"PCI\\\\VEN_10DE&DEV_2803\\\\4&2B1F0D8C&0&0008\"";
    const QStringList found {"Checking device index: 2 , ID: \"PCI\\\\VEN_8086&DEV_A7A0\\\\3&11583659&0&10\"",
        "Checking device index: 3 , ID: " + gpuId, "Found NVIDIA device: " + gpuId};
    const QString end = "Device info list destroyed for display adapters.";
};

TEST_F(NvidiaCheck, PassesAWorkingGpu)
{
    setCondition("gpu", true, noProblem);
    EXPECT_TRUE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(
        machine.log.lines(), found + QStringList({"Device " + gpuId + " is functioning properly.", end}));
}

struct Problem
{
    std::uint32_t code;
    bool passes;
};

class NvidiaProblem : public NvidiaCheck, public ::testing::WithParamInterface<Problem>
{ };

TEST_P(NvidiaProblem, OnlyFailedStartsNeedThePatch)
{
    setCondition("gpu", false, GetParam().code);
    EXPECT_EQ(manager->checkNvidiaAdapterStatus(), GetParam().passes);
    EXPECT_EQ(machine.log.lines(),
        found
            + QStringList(
                {QString("Device %1 has issues, ConfigManagerErrorCode: %2").arg(gpuId).arg(GetParam().code),
                    end}));
}

INSTANTIATE_TEST_SUITE_P(Codes, NvidiaProblem,
    ::testing::Values(
        Problem {43, false}, Problem {31, false}, Problem {28, true}, Problem {22, true}, Problem {1, true}));

TEST_F(NvidiaCheck, FailsWhenTheStatusCannotBeRead)
{
    fail(Fault::FailDeviceStatus, "gpu");
    EXPECT_FALSE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(machine.log.lines(), found + QStringList({"Failed to get device status for: " + gpuId, end}));
}

TEST_F(NvidiaCheck, PassesWithoutAnNvidiaAdapter)
{
    machine.computer.detach();
    EXPECT_TRUE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(machine.log.lines(), QStringList({found.first(), end}));
}

TEST_F(NvidiaCheck, SkipsAnAdapterWithoutAnId)
{
    fail(Fault::FailDeviceId, "gpu");
    EXPECT_TRUE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(machine.log.lines(), QStringList({found.first(), "Failed to get device ID for index: 3", end}));
}

TEST_F(NvidiaCheck, FindsTheMakerInAnySpelling)
{
    tarnSimulator::Device gpu = device("gpu");
    gpu.instanceId = "pci\\ven_10de&dev_2803\\1";
    gpu.problem = failedPostStart;
    devices().store(slot("gpu"), gpu);
    EXPECT_FALSE(manager->checkNvidiaAdapterStatus());
}

TEST_F(NvidiaCheck, TheFirstNvidiaAdapterDecides)
{
    setCondition("gpu", true, noProblem);
    addDevice("second", DeviceKind::Display, "NVIDIA 4060", "", "PCI\\VEN_10DE\\2");
    setCondition("second", false, failedPostStart);
    EXPECT_TRUE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(machine.log.lines().size(), 5);
}

TEST_F(NvidiaCheck, FailsWhenTheAdaptersCannotBeListed)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_FALSE(manager->checkNvidiaAdapterStatus());
    EXPECT_EQ(machine.log.lines(), QStringList({"Failed to get device info set for display adapters."}));
}

class GpuSwitching : public GpuState
{ };

TEST_F(GpuSwitching, EnablesAStoppedGpu)
{
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_TRUE(device("gpu").started);
    EXPECT_EQ(machine.log.lines(), QStringList({"GraphicsActive_log: Enabled 4060 series GPU at index 1"}));
}

TEST_F(GpuSwitching, LeavesAStartedGpuAlone)
{
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceEnable, "gpu");
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_TRUE(machine.log.lines().isEmpty());
}

TEST_F(GpuSwitching, EnablesAGpuWhoseStatusIsUnknown)
{
    fail(Fault::FailDeviceStatus, "gpu");
    EXPECT_EQ(manager->enableGpu(), 0);
    EXPECT_TRUE(device("gpu").started);
}

TEST_F(GpuSwitching, EnablesEveryAdapterOfTheSeriesWhateverBecomesOfOne)
{
    addDevice("second", DeviceKind::Display, "NVIDIA GeForce RTX 4060");
    setCondition("second", false, disabledDevice);
    fail(Fault::FailDeviceEnable, "gpu");
    EXPECT_EQ(manager->enableGpu(), -1);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_TRUE(device("second").started);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"GraphicsActive_log: Failed to enable 4060 series GPU at index 1",
            "GraphicsActive_log: Enabled 4060 series GPU at index 2"}));
}

TEST_F(GpuSwitching, CannotEnableWithoutAList)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_EQ(manager->enableGpu(), -1);
    EXPECT_EQ(machine.log.lines(), QStringList({"GraphicsActive_log: Failed to get device info set."}));
}

TEST_F(GpuSwitching, DisablesAStartedGpu)
{
    setCondition("gpu", true, noProblem);
    EXPECT_EQ(manager->disableGpu(), 0);
    EXPECT_FALSE(device("gpu").started);
    EXPECT_TRUE(device("graphics").started);
    EXPECT_EQ(
        machine.log.lines(), QStringList({"GraphicsDisengaged_log: Disabled 4060 series GPU at index 1"}));
}

TEST_F(GpuSwitching, LeavesAStoppedGpuAndOneOfUnknownStatusAlone)
{
    EXPECT_EQ(manager->disableGpu(), 0);
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceStatus, "gpu");
    EXPECT_EQ(manager->disableGpu(), 0);
    EXPECT_TRUE(device("gpu").started);
    EXPECT_TRUE(machine.log.lines().isEmpty());
}

TEST_F(GpuSwitching, DisablesEveryAdapterOfTheSeriesWhateverBecomesOfOne)
{
    addDevice("second", DeviceKind::Display, "NVIDIA GeForce RTX 4060");
    setCondition("gpu", true, noProblem);
    fail(Fault::FailDeviceDisable, "gpu");
    EXPECT_EQ(manager->disableGpu(), -1);
    EXPECT_FALSE(device("second").started);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"GraphicsDisengaged_log: Failed to disable 4060 series GPU at index 1",
            "GraphicsDisengaged_log: Disabled 4060 series GPU at index 2"}));
}

TEST_F(GpuSwitching, CannotDisableWithoutAList)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_EQ(manager->disableGpu(), -1);
    EXPECT_EQ(machine.log.lines(), QStringList({"GraphicsDisengaged_log: Failed to get device info set."}));
}

class HdAudio : public GpuState
{
protected:
    static QString found(const char *name) { return QString("Found device: \"%1\"").arg(name); }
    const QString restart = "High Definition Audio Device has a problem, disabling and re-enabling.";
};

TEST_F(HdAudio, IsLeftAloneWhileItWorks)
{
    EXPECT_TRUE(manager->resetHdAudioDevice());
    const QString works = "High Definition Audio Device is working properly.";
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {found("High Definition Audio Device"), works, found("NVIDIA High Definition Audio"), works}));
    EXPECT_TRUE(machine.clock.waits().empty());
}

TEST_F(HdAudio, EachDeviceWithAProblemIsRestartedWithItsOwnPause)
{
    setCondition("audio", false, failedStart);
    setCondition("gpu-audio", false, failedStart);
    bool stoppedMeanwhile = false;
    machine.clock.at(
        tarnTest::milliseconds(1000), [&] { stoppedMeanwhile = device("audio").problem == disabledDevice; });
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_TRUE(stoppedMeanwhile);
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({1000, 1000}));
    EXPECT_TRUE(device("audio").started && device("gpu-audio").started);
    const QString done = "High Definition Audio Device has been reset.";
    EXPECT_EQ(machine.log.lines(),
        QStringList({found("High Definition Audio Device"), restart, done,
            found("NVIDIA High Definition Audio"), restart, done}));
}

TEST_F(HdAudio, ADeviceThatIsStoppedIsStartedAgainWhenTheProcessEndsAndNoOtherIsStopped)
{
    setCondition("audio", false, failedStart);
    setCondition("gpu-audio", false, failedStart);
    bool unfinishedMeanwhile = false;
    machine.clock.at(machine.clock.now() + tarnTest::milliseconds(500), [&] {
        tarnTest::letProcessEnd();
        unfinishedMeanwhile = tarnPlatform::UnfinishedStep::any();
    });
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_TRUE(device("audio").started);
    EXPECT_EQ(device("gpu-audio").problem, failedStart);
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({1000}));
    EXPECT_TRUE(unfinishedMeanwhile);
    EXPECT_FALSE(tarnPlatform::UnfinishedStep::any());
    EXPECT_EQ(machine.log.lines().last(), "W: The service ends, so the device is not restarted.");
}

TEST_F(HdAudio, IsFoundInAnySpelling)
{
    rename("audio", "realtek high definition AUDIO");
    setCondition("audio", false, failedStart);
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_TRUE(device("audio").started);
}

TEST_F(HdAudio, ThatCannotBeStoppedIsLeftAsItIs)
{
    setCondition("audio", false, failedStart);
    fail(Fault::FailDeviceInstaller, "audio");
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_EQ(device("audio").problem, failedStart);
    EXPECT_TRUE(machine.log.contains("High Definition Audio Failed to disable device."));
    EXPECT_TRUE(machine.clock.waits().empty());
}

TEST_F(HdAudio, ThatCannotBeStartedAgainIsReported)
{
    setCondition("audio", false, failedStart);
    fail(Fault::FailDeviceInstaller, "audio", 1);
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_TRUE(machine.log.contains("High Definition Audio Failed to enable device."));
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({1000}));
}

TEST_F(HdAudio, DevicesThatCannotBeReadAreSkipped)
{
    fail(Fault::FailDeviceDescription, "graphics");
    fail(Fault::FailDeviceStatus, "audio");
    EXPECT_TRUE(manager->resetHdAudioDevice());
    EXPECT_EQ(machine.log.lines().mid(0, 3),
        QStringList({"Failed to get device name.", found("High Definition Audio Device"),
            "Failed to get High Definition Audio device status."}));
}

TEST_F(HdAudio, CannotBeLookedForWithoutAList)
{
    machine.faults().switchOn(Fault::FailDeviceList);
    EXPECT_FALSE(manager->resetHdAudioDevice());
    EXPECT_EQ(machine.log.lines(), QStringList({"Failed to get device information set."}));
}
