#include "panel/computer/machine_operations.h"

#include "panel/computer/machine_watch.h"
#include "panel/session/session.h"
#include "simulator/tool/run_tool.h"

#include <QFileInfo>

#include <algorithm>

namespace tarnPanel {

namespace {

const QString stateOption = QStringLiteral("--state");

// What somebody types into a field must stay a value.
bool isOption(const QString &word)
{
    return word.startsWith(QLatin1String("--")) || word == QLatin1String("-h");
}

QString withoutToolName(QString complaint)
{
    const auto toolName = QLatin1String("tarnsim: ");
    if (complaint.startsWith(toolName))
        complaint.remove(0, toolName.size());
    return complaint.trimmed();
}

} // namespace

MachineOperations::MachineOperations(MachineWatch &machineWatch, Session &session, QObject *parent)
    : QObject(parent)
    , watch(machineWatch)
    , commands(session)
{ }

bool MachineOperations::carryOut(const QStringList &words, Noted noted)
{
    lastComplaint = run(words);
    const bool isDone = lastComplaint.isEmpty();
    if (isDone && noted == Noted::Now)
        note(words);
    Q_EMIT complained(lastComplaint);
    watch.look();
    return isDone;
}

void MachineOperations::note(const QStringList &words, int delayMs)
{
    QStringList all = words;
    // Absolute, because it will be pasted in another folder.
    if (!watch.isDefaultFile())
        all = QStringList {stateOption, QFileInfo(watch.fileName()).absoluteFilePath()} + words;
    commands.add({QStringLiteral("tarnsim"), all}, QDateTime::currentDateTime().addMSecs(delayMs));
}

QString MachineOperations::run(const QStringList &words) const
{
    if (!watch.hasMachine())
        return QStringLiteral("There is no simulated computer.");
    if (const auto option = std::ranges::find_if(words, isOption); option != words.end())
        return QStringLiteral("\"%1\" is not possible here.").arg(*option);
    QString output;
    QString errors;
    QTextStream out(&output);
    QTextStream err(&errors);
    const QStringList program {QStringLiteral("tarnsim"), stateOption, watch.fileName()};
    const int exitCode = tarnSimulator::runTool(program + words, out, err);
    out.flush();
    err.flush();
    if (exitCode == 0)
        return {};
    const QString complaint = withoutToolName(errors);
    return complaint.isEmpty() ? QStringLiteral("tarnsim ended with exit code %1.").arg(exitCode) : complaint;
}

} // namespace tarnPanel
