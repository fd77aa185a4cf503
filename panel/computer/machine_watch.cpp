#include "panel/computer/machine_watch.h"

#include "simulator/state_location.h"
#include "simulator/tool/state_choice.h"

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

bool isTheSame(const std::filesystem::path &one, const std::filesystem::path &other)
{
    std::error_code error;
    return std::filesystem::equivalent(one, other, error) && !error;
}

} // namespace

MachineWatch::MachineWatch(const QString &stateFile, QObject *parent, const QString &programFolder)
    : QObject(parent)
    , named(stateFile)
    , folder(programFolder)
{
    connect(&timer, &QTimer::timeout, this, &MachineWatch::look);
}

void MachineWatch::setActive(bool active)
{
    if (active == timer.isActive())
        return;
    if (!active) {
        timer.stop();
        return;
    }
    timer.start(hasMachine() ? lookPeriod : searchPeriod);
    look();
}

void MachineWatch::look()
{
    if (hasMachine() && !isStillThere()) {
        forget();
        Q_EMIT machineChanged(false);
    }
    if (!hasMachine()) {
        open();
        if (timer.isActive())
            timer.start(hasMachine() ? lookPeriod : searchPeriod);
        if (hasMachine())
            Q_EMIT machineChanged(true);
    }
    lookAtLog();
    Q_EMIT looked();
}

const ComputerControl *MachineWatch::computer() const
{
    return control ? &*control : nullptr;
}

QString MachineWatch::fileName() const
{
    return file ? QString::fromStdU16String(file->path().u16string()) : QString();
}

bool MachineWatch::isStillThere() const
{
    return identityOf(file->path()) == identity;
}

void MachineWatch::open()
{
    const StateChoice choice = chooseStateFile(named);
    const auto found = identityOf(choice.file);
    if (!found) {
        whyNone = missingStateText(choice);
        whyNone.replace(0, 1, whyNone.at(0).toUpper());
        return;
    }
    std::string error;
    file = MachineStateFile::open(choice.file, MachineStateFile::Missing::IsAnError, error);
    if (!file) {
        whyNone = QString::fromStdString(error);
        return;
    }
    whyNone.clear();
    identity = *found;
    control.emplace(file->state());
    lastAccess = control->registerLog().end();
    const auto beside = std::filesystem::path(folder.toStdU16String()) / "function" / stateFileName;
    isDefault = !stateFileFromEnvironment() && isTheSame(choice.file, beside);
}

void MachineWatch::forget()
{
    control.reset();
    file.reset();
}

// Without accesses the end stays. A machine that was reset keeps its log.
void MachineWatch::lookAtLog()
{
    if (!control)
        return;
    const std::uint64_t end = control->registerLog().end();
    if (end == lastAccess)
        return;
    lastAccess = end;
    Q_EMIT accessed();
}

} // namespace tarnPanel
