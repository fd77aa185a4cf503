#include "panel/session/session.h"

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

const QDateTime start(QDate(2026, 11, 21), QTime(10, 40, 17));

Command sim(const QStringList &words)
{
    return {QStringLiteral("tarnsim"), words};
}

} // namespace

TEST(CommandText, QuotesWhatAShellWouldReadOtherwise)
{
    EXPECT_EQ(shellText(sim({QStringLiteral("set"), QStringLiteral("dock-light"), QStringLiteral("1,0,0")})),
        QStringLiteral("./tarnsim set dock-light 1,0,0"));
    EXPECT_EQ(
        shellText(sim({QStringLiteral("a b"), QStringLiteral("it's"), QString(), QStringLiteral("$X")})),
        QStringLiteral("./tarnsim 'a b' 'it'\\''s' '' '$X'"));
}

TEST(Session, ListsWhatWasDoneWithItsTime)
{
    Session session;
    session.add(sim({QStringLiteral("attach"), QStringLiteral("dock")}), start);
    ASSERT_EQ(session.rowCount(), 1);
    EXPECT_EQ(session.index(0, Session::Time).data().toString(), QStringLiteral("10:40:17"));
    EXPECT_EQ(session.index(0, Session::Text).data().toString(), QStringLiteral("./tarnsim attach dock"));
    EXPECT_EQ(session.headerData(Session::Text, Qt::Horizontal).toString(), QStringLiteral("Command"));
}

TEST(Session, WritesAScriptWithThePausesThatWere)
{
    Session session;
    session.add(sim({QStringLiteral("attach"), QStringLiteral("dock")}), start);
    session.add({QStringLiteral("tarnctl"), {QStringLiteral("getMcuVersion")}}, start.addMSecs(2500));
    session.add(sim({QStringLiteral("detach")}), start.addMSecs(2900));
    session.add(sim({QStringLiteral("list")}), start.addMSecs(2950));
    session.add(sim({QStringLiteral("reset")}), start.addSecs(3600));
    const QStringList lines = session.script(QStringLiteral("/opt/my tarn")).split(u'\n');
    EXPECT_EQ(lines.mid(2).join(u'\n'),
        QStringLiteral(
            "cd '/opt/my tarn' || exit 1\n./tarnsim attach dock\nsleep 2.5\n./tarnctl getMcuVersion\n"
            "sleep 0.4\n./tarnsim detach\n./tarnsim list\nsleep 60.0\n./tarnsim reset\n"));
}

TEST(Session, WritesAScriptForWindowsToo)
{
    Session session;
    session.add(
        {QStringLiteral("tarnctl"), {QStringLiteral("update-mcu"), QStringLiteral("C:\\my files\\100%.bin")}},
        start);
    session.add(sim({QStringLiteral("say \"it\""), QStringLiteral("ends\\ ")}), start.addMSecs(1100));
    const QStringList lines =
        session.script(QStringLiteral("C:/Program Files/Tarn"), windowsShell()).split(QStringLiteral("\r\n"));
    EXPECT_EQ(lines.at(0), QStringLiteral("@echo off"));
    EXPECT_TRUE(lines.at(1).startsWith(QStringLiteral("rem A session")));
    EXPECT_EQ(lines.at(3), QStringLiteral(R"(.\tarnctl update-mcu "C:\my files\100%%.bin")"));
    EXPECT_EQ(lines.at(4), QStringLiteral("timeout /t 2 /nobreak >nul"));
    EXPECT_EQ(lines.at(5), QStringLiteral(R"(.\tarnsim "say \"it\"" "ends\ ")"));
    EXPECT_EQ(
        shellText(sim({QStringLiteral(R"(a b\)")}), windowsShell()), QStringLiteral(R"(.\tarnsim "a b\\")"));
}

TEST(Session, KeepsTheLastTenThousand)
{
    Session session;
    for (int i = 0; i <= Session::capacity; ++i)
        session.add(sim({QString::number(i)}), start);
    EXPECT_EQ(session.rowCount(), Session::capacity);
    EXPECT_EQ(session.index(0, Session::Text).data().toString(), QStringLiteral("./tarnsim 1"));
    EXPECT_TRUE(session.script(QStringLiteral("/opt"))
                    .contains(QStringLiteral("# The first 1 commands are missing")));
}
