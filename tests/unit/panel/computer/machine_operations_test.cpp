#include "unit/panel/computer/panel_machine.h"

#include <QDir>

using namespace tarnPanel;
using namespace tarnPanelTest;

namespace {

class MachineOperationsTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        watch.look();
    }

    [[nodiscard]] QString allCommands() const
    {
        QStringList lines;
        for (int row = 0; row < session.rowCount(); ++row)
            lines << session.index(row, Session::Text).data().toString();
        return lines.join(u'\n');
    }

    MachineWatch watch {stateFile};
    MachineOperations operations {watch, session};
};

} // namespace

TEST_F(MachineOperationsTest, DoesWhatTheCommandSaysAndAddsIt)
{
    EXPECT_TRUE(
        operations.carryOut({QStringLiteral("set"), QStringLiteral("battery"), QStringLiteral("42")}));
    EXPECT_EQ(computer->peek(tarnDeviceInfos::EC_TARN_BATTERY_NUM), 42);
    EXPECT_EQ(allCommands(), QStringLiteral("./tarnsim --state %1 set battery 42").arg(stateFile));
}

TEST_F(MachineOperationsTest, LeavesOutTheFileThatTheToolChoosesItself)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("function")));
    const QString beside = folder.filePath(QStringLiteral("function/simulated_computer.state"));
    ASSERT_TRUE(QFile::link(stateFile, beside));
    MachineWatch byDefault(beside, nullptr, folder.path());
    byDefault.look();
    MachineOperations plain(byDefault, session);
    EXPECT_TRUE(plain.carryOut({QStringLiteral("detach")}));
    EXPECT_EQ(allCommands(), QStringLiteral("./tarnsim detach"));
}

TEST_F(MachineOperationsTest, NamesTheFileSoThatItIsFoundFromAnywhere)
{
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    MachineWatch relative(QStringLiteral("machine.state"));
    relative.look();
    // The tool would not look for a file of that name.
    ASSERT_FALSE(relative.isDefaultFile());
    MachineOperations named(relative, session);
    EXPECT_TRUE(named.carryOut({QStringLiteral("detach")}));
    const QString absolute = QDir::current().absoluteFilePath(QStringLiteral("machine.state"));
    EXPECT_EQ(allCommands(), QStringLiteral("./tarnsim --state %1 detach").arg(absolute));
    ASSERT_TRUE(QDir::setCurrent(QDir::rootPath()));
}

TEST_F(MachineOperationsTest, PassesOnTheComplaintAndAddsNothing)
{
    QString complaint;
    QObject::connect(&operations, &MachineOperations::complained, &operations,
        [&complaint](const QString &text) { complaint = text; });
    const QStringList tooMuch {QStringLiteral("set"), QStringLiteral("battery"), QStringLiteral("256")};
    EXPECT_FALSE(operations.carryOut(tooMuch));
    EXPECT_EQ(complaint, QStringLiteral("battery cannot be \"256\"; allowed: 0 to 255"));
    EXPECT_EQ(allCommands(), QString());
    EXPECT_TRUE(operations.carryOut({QStringLiteral("detach")}));
    EXPECT_EQ(complaint, QString());
}

TEST_F(MachineOperationsTest, WhatIsTypedIsNoOption)
{
    for (const QString &word : {QStringLiteral("--help"), QStringLiteral("-h"), QStringLiteral("--state=/x")})
        EXPECT_FALSE(operations.carryOut({QStringLiteral("fault"), QStringLiteral("slow"), word}));
    EXPECT_EQ(allCommands(), QString());
    EXPECT_TRUE(operations.complaint().contains(QStringLiteral("--state=/x")));
}

TEST_F(MachineOperationsTest, ASessionRepeatsPausesThatAreNeeded)
{
    operations.note({QStringLiteral("first")});
    operations.note({QStringLiteral("second")}, 1000);
    EXPECT_TRUE(session.script(QStringLiteral("/x")).contains(QStringLiteral("sleep 1.0")))
        << session.script(QStringLiteral("/x")).toStdString();
}
