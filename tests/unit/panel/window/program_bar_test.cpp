#include "panel/window/program_bar.h"

#include "panel/look/theme.h"
#include "panel/window/started_program.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

// A service that runs until it is ended, and a serial port that ends when the file "go" is there.
class ProgramBarTest : public ::testing::Test
{
protected:
    ProgramBarTest()
    {
        write("service", "exec sleep 100\n");
        write("port", "while [ ! -e go ] && [ -e \"$0\" ]; do sleep 0.05; done\n");
        service = std::make_unique<StartedProgram>(
            ProgramKind {QStringLiteral("service"), {}, QStringLiteral("The service")}, folder.path());
        port = std::make_unique<StartedProgram>(
            ProgramKind {QStringLiteral("port"), {}, QStringLiteral("The port")}, folder.path());
        bar = std::make_unique<ProgramBar>(*service, *port);
        bar->show();
    }
    ~ProgramBarTest() override { bar.reset(); }
    Q_DISABLE_COPY_MOVE(ProgramBarTest)

    void write(const char *name, const QByteArray &script) const
    {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QString text() const { return bar->findChild<QLabel *>()->text(); }
    [[nodiscard]] QPushButton *button() const { return bar->findChild<QPushButton *>(); }
    [[nodiscard]] bool isBad() const
    {
        const QPalette colours = bar->findChild<QLabel *>()->palette();
        return colours.color(QPalette::WindowText) == toneColour(Tone::Bad, QApplication::palette());
    }

    const QTemporaryDir folder;
    std::unique_ptr<StartedProgram> service;
    std::unique_ptr<StartedProgram> port;
    std::unique_ptr<ProgramBar> bar;
};

constexpr int patienceForProgramsMs = 20000;

} // namespace

TEST_F(ProgramBarTest, StartsTheServiceAgain)
{
    EXPECT_TRUE(button()->isVisible());
    QTest::mouseClick(button(), Qt::LeftButton);
    EXPECT_EQ(service->state(), StartedProgram::State::Running);
    EXPECT_FALSE(button()->isVisible());
    EXPECT_FALSE(isBad());
    service->end();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !service->isAlive(); }, patienceForProgramsMs));
    EXPECT_TRUE(button()->isVisible());
    EXPECT_TRUE(isBad());
    setAppearance(Appearance::Dark);
    EXPECT_TRUE(QTest::qWaitFor([this] { return isBad(); }, patienceForProgramsMs))
        << "in the other look too";
    setAppearance(Appearance::Light);
    QTest::mouseClick(button(), Qt::LeftButton);
    EXPECT_EQ(service->state(), StartedProgram::State::Running);
}

TEST_F(ProgramBarTest, StartsTheSerialPortAgainWhileTheServiceRuns)
{
    service->start();
    port->start();
    EXPECT_FALSE(button()->isVisible());
    QFile go(folder.filePath(QStringLiteral("go")));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !port->isAlive(); }, patienceForProgramsMs));
    EXPECT_TRUE(text().contains(QStringLiteral("The port has ended with exit code 0.")));
    EXPECT_TRUE(text().contains(QStringLiteral("Updates of its MCU fail")));
    EXPECT_TRUE(button()->text().contains(QStringLiteral("serial port")));
    ASSERT_TRUE(go.remove());
    QTest::mouseClick(button(), Qt::LeftButton);
    EXPECT_EQ(port->state(), StartedProgram::State::Running);
    EXPECT_EQ(service->state(), StartedProgram::State::Running);
    EXPECT_FALSE(button()->isVisible());
}
