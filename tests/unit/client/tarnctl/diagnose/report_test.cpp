#include "client/tarnctl/diagnose/report.h"

#include "client/tarnctl/diagnose/diagnosis.h"
#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

using Report = tarnClientTest::Diagnosis;

namespace {

QString reportText(const Case &examined, bool withSerialNumbers = false)
{
    return reportOf(examined, findingsOf(allChecks(), examined), withSerialNumbers);
}

} // namespace

TEST_F(Report, HasTheTableVersionsSettingsAndLog)
{
    const Case which = examined();
    const QString text = reportText(which);
    EXPECT_TRUE(text.startsWith("== Tarn Service, "
        + which.now.toOffsetFromUtc(which.now.offsetFromUtc()).toString(Qt::ISODate) + "\n\n"
        + tableOf(findingsOf(allChecks(), which))
        + "\n\n== Versions\n\n"
          "system: one of a test\n\n== Settings files\n\n"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("/powermodeconfig.xml (1 bytes):\n1\n"));
    EXPECT_TRUE(text.contains("/graphicsRGB_config.ini (26 bytes):\n[General]\ngraphicsColor=2\n"));
    EXPECT_TRUE(text.contains("/uiset.ini (29 bytes):\n[UI]\nIO=1\nBinName=old.bin\n"));
    EXPECT_TRUE(
        text.endsWith("== The last 2000 lines of the log\n\n"
                      "2026-11-21 11:00:00.000 debug 0x7f2a Tarn Service is running as  \"" TARN_VERSION
                      "\" !\n2026-11-21 11:00:00.000 debug 0x7f2a TarnService::start\n\n"))
        << text.toStdString();
}

TEST_F(Report, TellsWhatItCannotCollect)
{
    remove("powermodeconfig.xml");
    remove("log/TarnService.log");
    const QString text = reportText(examined());
    EXPECT_TRUE(text.contains("/powermodeconfig.xml: not there\n"));
    EXPECT_TRUE(text.endsWith("== The last 2000 lines of the log\n\nnone\n\n"));
}

TEST_F(Report, HasTheLastLinesOfALongLog)
{
    QStringList lines;
    for (int number = 1; number <= 2500; ++number)
        lines << QString("debug line %1.").arg(number);
    log(lines);
    const QString text = reportText(examined());
    EXPECT_FALSE(text.contains("line 500."));
    EXPECT_TRUE(text.contains("line 501."));
    EXPECT_TRUE(text.contains("line 2500."));
}

TEST_F(Report, HasSerialNumbersOnlyOnRequest)
{
    log({R"(debug send{"cmd":"getTarnKvaneSnCode","data":"0123456789ABCD"})"});
    EXPECT_FALSE(reportText(examined()).contains("0123456789ABCD"));
    EXPECT_TRUE(reportText(examined(), true).contains("0123456789ABCD"));
}
