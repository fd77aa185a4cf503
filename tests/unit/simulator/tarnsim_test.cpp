#include "tarnsim_session.h"

#include "device/ec_registers.h"
#include "simulator/machine_values.h"
#include "simulator/tool/state_choice.h"
#include "simulator/tool/verb_table.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace tarnDeviceInfos;

class Tarnsim : public tarnSimulatorTest::TarnsimSession
{
protected:
    // What can be attached by name.
    static QStringList accessoryNames()
    {
        QStringList names;
        for (const tarnSimulator::Accessory &accessory : tarnSimulator::accessoryCatalog())
            names << QString::fromLatin1(accessory.name.data(), qsizetype(accessory.name.size()));
        return names << "unknown";
    }
};

TEST_F(Tarnsim, AttachesAndDetaches)
{
    EXPECT_EQ(run(QStringLiteral("attach kvane")), 0);
    EXPECT_EQ(computer->peek(MCU_LINK_STATUS), MCU_LINKED);
    EXPECT_EQ(computer->peek(ACCESSORY_CODE), ACCESSORY_KVANE);
    EXPECT_EQ(run(QStringLiteral("attach graphics16g")), 0);
    EXPECT_EQ(computer->peek(ACCESSORY_CODE), ACCESSORY_GRAPHICS_16G);
    EXPECT_EQ(run(QStringLiteral("detach")), 0);
    EXPECT_FALSE(computer->isAttached());
}

TEST_F(Tarnsim, AttachesUnknownAccessories)
{
    EXPECT_EQ(run(QStringLiteral("attach unknown")), 0);
    EXPECT_EQ(computer->peek(ACCESSORY_CODE), 9);
    EXPECT_EQ(run(QStringLiteral("attach 0x4D")), 0);
    EXPECT_EQ(computer->peek(ACCESSORY_CODE), 77);
    EXPECT_EQ(run(QStringLiteral("attach 1")), 0);
    EXPECT_EQ(computer->peek(HARDWARE_VERSION), tarnSimulator::findAccessory("dock")->hardwareVersion);
}

TEST_F(Tarnsim, RefusesAnAccessoryThatDoesNotExist)
{
    EXPECT_EQ(run(QStringLiteral("attach banana")), 2);
    EXPECT_TRUE(complained("\"banana\""));
    EXPECT_TRUE(complained(qPrintable(accessoryNames().join(", "))));
    EXPECT_FALSE(computer->isAttached());
    EXPECT_EQ(run(QStringLiteral("attach 256")), 2);
}

TEST_F(Tarnsim, SetsAndGetsValues)
{
    EXPECT_EQ(run(QStringLiteral("set battery 42")), 0);
    EXPECT_EQ(computer->peek(EC_TARN_BATTERY_NUM), 42);
    EXPECT_EQ(run(QStringLiteral("get battery")), 0);
    EXPECT_EQ(output, QStringLiteral("42\n"));
    EXPECT_EQ(run(QStringLiteral("set smart-charging off")), 0);
    EXPECT_EQ(run(QStringLiteral("get smart-charging")), 0);
    EXPECT_EQ(output, QStringLiteral("off\n"));
}

TEST_F(Tarnsim, SaysWhatAValueMayBe)
{
    EXPECT_EQ(run(QStringLiteral("set battery full")), 2);
    EXPECT_TRUE(complained("battery cannot be \"full\"; allowed: 0 to 255"));
    EXPECT_EQ(run(QStringLiteral("set pl1 10")), 2);
    EXPECT_TRUE(complained("pl1 can only be read"));
    EXPECT_EQ(run(QStringLiteral("set colour 10")), 2);
    EXPECT_TRUE(complained("dock-light"));
    EXPECT_EQ(run(QStringLiteral("get colour")), 2);
    EXPECT_TRUE(complained("dock-light"));
}

TEST_F(Tarnsim, ShowsAllValues)
{
    computer->setHostBattery(123);
    EXPECT_EQ(run(QStringLiteral("values")), 0);
    EXPECT_TRUE(said("123"));
    EXPECT_EQ(output.count(QLatin1Char('\n')), static_cast<qsizetype>(tarnSimulator::machineValues().size()));
}

TEST_F(Tarnsim, ArmsEvents)
{
    EXPECT_EQ(run(QStringLiteral("press-gpu-key")), 0);
    EXPECT_EQ(run(QStringLiteral("event 0x12")), 0);
    EXPECT_EQ(run(QStringLiteral("event 19 0x80")), 0);
    const auto events = computer->armedEvents();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].code, APP_EVENT_GPU_KEY);
    EXPECT_EQ(events[0].data, APP_EVENT_DATA_DISENGAGE);
    EXPECT_EQ(events[1].code, 0x12);
    EXPECT_EQ(events[1].data, 0);
    EXPECT_EQ(events[2].code, 0x13);
    EXPECT_EQ(events[2].data, 0x80);
}

TEST_F(Tarnsim, RefusesWrongAndTooManyEvents)
{
    EXPECT_EQ(run(QStringLiteral("event 0")), 2);
    EXPECT_EQ(run(QStringLiteral("event key")), 2);
    EXPECT_EQ(run(QStringLiteral("event 1 256")), 2);
    EXPECT_TRUE(complained("allowed: 0 to 255"));
    for (std::size_t i = 0; i < tarnSimulator::eventSlots; ++i)
        EXPECT_EQ(run(QStringLiteral("press-gpu-key")), 0);
    EXPECT_EQ(run(QStringLiteral("press-gpu-key")), 1);
    EXPECT_TRUE(complained("16 events wait already"));
}

TEST_F(Tarnsim, ResetsTheMachine)
{
    computer->setHostBattery(1);
    EXPECT_EQ(run(QStringLiteral("reset")), 0);
    EXPECT_EQ(computer->peek(EC_TARN_BATTERY_NUM), 80);
}

TEST_F(Tarnsim, ShowsTheMachine)
{
    computer->attach(*tarnSimulator::findAccessory("graphics"));
    computer->setHostBattery(37);
    ASSERT_TRUE(computer->pressGpuKey());
    computer->faults().switchOn(tarnSimulator::Fault::Slow, 70);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(output.contains(stateFile));
    EXPECT_TRUE(said("graphics (code 2), hardware version 5, MCU version 2.100"));
    EXPECT_TRUE(said("battery 37"));
    EXPECT_TRUE(said("0x11 data 0x04"));
    EXPECT_TRUE(said("slow: 70 ms"));

    computer->reset();
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("none (link status 0)"));
    EXPECT_FALSE(said("slow"));
}

TEST_F(Tarnsim, ShowsTheValuesOfAGroupInOneLine)
{
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("\nHost battery        battery 80, charging 1"));
    EXPECT_TRUE(said("\nKVane               kvane-battery 60, kvane-charging 0, "));
    EXPECT_TRUE(said("\nPower               supply-mode 0, power-mode 1, "));
    EXPECT_TRUE(said("\nLimits              pl-control 0, pl1 28, pl2 30, pl4 55, "));
    EXPECT_TRUE(said("\nMCU update          mcu-update 0, "));
}

// Those of the accessory are in words, and Other is what it leaves out.
TEST_F(Tarnsim, ShowsEveryValueOnce)
{
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    for (const tarnSimulator::MachineValue &value : tarnSimulator::machineValues()) {
        const bool shown = value.group != tarnSimulator::ValueGroup::Accessory
            && value.group != tarnSimulator::ValueGroup::Other;
        const QString name = QString::fromLatin1(value.name.data(), qsizetype(value.name.size()));
        const QRegularExpression asWord(QStringLiteral("[ ]%1 \\S").arg(name));
        EXPECT_EQ(output.count(asWord), shown ? 1 : 0) << value.name;
    }
}

// Authors of another host see their mistakes on the channel here.
TEST_F(Tarnsim, ShowTellsWhatAHostDidToTheChannel)
{
    EXPECT_EQ(run(QStringLiteral("set acceptance-polls 3")), 0);
    machine->state().counters.commands.store(9);
    machine->state().counters.abortedCommands.store(2);
    machine->state().counters.writtenWhileFull.store(5);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("acceptance-polls 3"));
    EXPECT_TRUE(said("2 of 9 commands aborted, 5 bytes written while IBF was set"));

    EXPECT_EQ(run(QStringLiteral("reset")), 0);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("acceptance-polls 0"));
    EXPECT_TRUE(said("0 of 0 commands aborted, 0 bytes written while IBF was set"));
}

TEST_F(Tarnsim, HelpCoversEveryVerb)
{
    EXPECT_EQ(runBare({QStringLiteral("--help")}), 0);
    const QString overview = output;
    for (const auto &verb : tarnSimulator::verbTable()) {
        EXPECT_TRUE(overview.contains(QString::fromLatin1(verb.name))) << verb.name;
        EXPECT_EQ(runBare({QStringLiteral("help"), QString::fromLatin1(verb.name)}), 0);
        EXPECT_TRUE(said(verb.summary));
        EXPECT_TRUE(said(verb.syntax));
        EXPECT_EQ(runBare({QString::fromLatin1(verb.name), QStringLiteral("--help")}), 0);
        EXPECT_TRUE(said(verb.summary));
    }
    EXPECT_EQ(runBare({QStringLiteral("help banana")}), 2);
}

TEST_F(Tarnsim, ListsNamesOnePerLine)
{
    EXPECT_EQ(runBare({QStringLiteral("list accessories")}), 0);
    EXPECT_EQ(output, accessoryNames().join("\n") + "\n");
    EXPECT_EQ(runBare({QStringLiteral("list verbs")}), 0);
    EXPECT_TRUE(said("press-gpu-key\n"));
    EXPECT_EQ(runBare({QStringLiteral("list values")}), 0);
    EXPECT_TRUE(said("supply-mode\n"));
    EXPECT_EQ(runBare({QStringLiteral("list faults")}), 0);
    EXPECT_TRUE(said("fail-after\n"));
    EXPECT_EQ(runBare({QStringLiteral("list registers")}), 0);
    EXPECT_TRUE(output.startsWith("EC_FAN_MODE\nXEC_APP_EVENT\n"));
    EXPECT_TRUE(said("\nXEC_APP_CMD\nXEC_RGB_CMD\nXEC_APP_CMD_DATA0\n"));
    EXPECT_EQ(runBare({QStringLiteral("list colours")}), 2);
    EXPECT_TRUE(complained("verbs, accessories, values, faults, registers"));
}

TEST_F(Tarnsim, RefusesWrongCommandLines)
{
    EXPECT_EQ(runBare({}), 2);
    EXPECT_TRUE(complained("a verb is missing"));
    EXPECT_EQ(runBare({QStringLiteral("dance")}), 2);
    EXPECT_TRUE(complained("there is no verb \"dance\""));
    EXPECT_TRUE(complained("attach"));
    EXPECT_EQ(run(QStringLiteral("attach")), 2);
    EXPECT_TRUE(complained("usage: tarnsim attach ACCESSORY"));
    EXPECT_EQ(run(QStringLiteral("detach now")), 2);
    EXPECT_EQ(runBare({QStringLiteral("show --state")}), 2);
    EXPECT_TRUE(complained("--state needs the name of a file"));
    EXPECT_TRUE(output.isEmpty());
}

TEST_F(Tarnsim, StateOptionMayStandAnywhere)
{
    EXPECT_EQ(runBare({QStringLiteral("get battery --state"), stateFile}), 0);
    EXPECT_EQ(output, QStringLiteral("80\n"));
    const QStringList joined {QStringLiteral("tarnsim"), QStringLiteral("--state=") + stateFile,
        QStringLiteral("get"), QStringLiteral("battery")};
    QString text;
    QTextStream out(&text);
    QTextStream err(&errors);
    EXPECT_EQ(tarnSimulator::runTool(joined, out, err), 0);
    EXPECT_EQ(text, QStringLiteral("80\n"));
}

TEST_F(Tarnsim, SaysHowToGetAMachineWhenThereIsNone)
{
    stateFile = folder.filePath(QStringLiteral("other.state"));
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(errors.contains(stateFile));
    EXPECT_TRUE(complained("./run"));
    EXPECT_TRUE(complained("--state FILE"));
    EXPECT_FALSE(QFile::exists(stateFile));

    EXPECT_EQ(run(QStringLiteral("reset")), 0);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
}

TEST_F(Tarnsim, RefusesAFileThatIsNoMachine)
{
    stateFile = folder.filePath(QStringLiteral("other.state"));
    QFile file(stateFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(50000, 'x'));
    file.close();
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(complained("is not the state of a simulated computer"));
}

TEST_F(Tarnsim, FindsTheStateFileByItself)
{
    const QByteArray environment = qgetenv("TARN_SIMULATOR_STATE");
    const QString directory = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    qunsetenv("TARN_SIMULATOR_STATE");

    const auto nothing = tarnSimulator::chooseStateFile({});
    EXPECT_EQ(nothing.file, "simulated_computer.state");
    EXPECT_EQ(nothing.places.size(), 3);

    QDir::current().mkdir(QStringLiteral("function"));
    EXPECT_EQ(
        tarnSimulator::chooseStateFile({}).file, std::filesystem::path("function/simulated_computer.state"));

    QFile::copy(stateFile, QStringLiteral("simulated_computer.state"));
    EXPECT_EQ(tarnSimulator::chooseStateFile({}).file, "simulated_computer.state");

    QFile::copy(stateFile, QStringLiteral("function/simulated_computer.state"));
    EXPECT_EQ(
        tarnSimulator::chooseStateFile({}).file, std::filesystem::path("function/simulated_computer.state"));

    qputenv("TARN_SIMULATOR_STATE", "named.state");
    EXPECT_EQ(tarnSimulator::chooseStateFile({}).file, "named.state");
    EXPECT_EQ(tarnSimulator::chooseStateFile(QStringLiteral("mine.state")).file, "mine.state");

    qunsetenv("TARN_SIMULATOR_STATE");
    if (!environment.isEmpty())
        qputenv("TARN_SIMULATOR_STATE", environment);
    ASSERT_TRUE(QDir::setCurrent(directory));
}
