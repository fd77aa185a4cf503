#include "end_to_end/recording_scenarios.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

// Records each scenario on the simulated computer, for tests/recordings; with names, only these.
//
//     make_recordings FOLDER [NAME...]
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    QTextStream out(stdout);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        out << "usage: make_recordings FOLDER [NAME...]\n";
        return 2;
    }
    const QStringList names = arguments.mid(2);
    int failed = 0;
    for (const tarnTest::RecordingScenario &scenario : tarnTest::recordingScenarios()) {
        const QString name = QString::fromLatin1(scenario.name);
        if (!names.isEmpty() && !names.contains(name))
            continue;
        tarnTest::RecordedService computer;
        const QString made = tarnTest::recordScenario(computer, scenario);
        // Real ones have the name of their computer.
        const QString target =
            QDir(arguments.at(1)).filePath(QStringLiteral("simulated-%1.recording").arg(name));
        const bool isGood = !made.isEmpty() && tarnTest::copyRecording(made, target);
        out << (isGood ? "made    " : "FAILED  ") << name << Qt::endl;
        failed += isGood ? 0 : 1;
    }
    return failed == 0 ? 0 : 1;
}
