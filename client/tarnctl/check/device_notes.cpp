#include "device_notes.h"

#include "client/tarnctl/answer_text.h"

#include <QJsonObject>

#include <algorithm>
#include <utility>

namespace tarnctl {

namespace {

QString wordOf(HostDevice::Kind kind)
{
    return kind == HostDevice::Kind::Display ? QStringLiteral("display") : QStringLiteral("audio");
}

QString stateText(const HostDevice &device)
{
    if (device.isStarted)
        return QStringLiteral("started");
    return device.problem == 0 ? QStringLiteral("stopped")
                               : QStringLiteral("stopped (problem %1)").arg(device.problem);
}

} // namespace

DeviceNotes::DeviceNotes(List deviceList, tarnRecording::RequestJournal &requestJournal)
    : list(std::move(deviceList))
    , journal(requestJournal)
{ }

QStringList DeviceNotes::noteChanges()
{
    QStringList lines;
    const QList<HostDevice> present = list();
    for (const HostDevice &device : present) {
        Known *known = find(device);
        if (known == nullptr) {
            const QString place = isFirst ? QStringLiteral("computer") : QStringLiteral("box");
            all << Known {device, freeName(device.kind), place};
            lines << note(all.last());
        } else if (!known->isPresent || known->device != device) {
            known->device = device;
            known->isPresent = true;
            lines << note(*known);
        }
    }
    for (Known &known : all) {
        const bool isHere = std::any_of(present.begin(), present.end(),
            [&known](const HostDevice &device) { return device.instanceId == known.device.instanceId; });
        if (known.isPresent && !isHere) {
            known.isPresent = false;
            lines << note(known);
            known.place = QStringLiteral("box");
        }
    }
    isFirst = false;
    return lines;
}

DeviceNotes::Known *DeviceNotes::find(const HostDevice &device)
{
    const auto found = std::find_if(all.begin(), all.end(),
        [&device](const Known &known) { return known.device.instanceId == device.instanceId; });
    return found == all.end() ? nullptr : &*found;
}

QString DeviceNotes::freeName(HostDevice::Kind kind) const
{
    const auto before = std::count_if(
        all.begin(), all.end(), [kind](const Known &known) { return known.device.kind == kind; });
    return wordOf(kind) + QString::number(before + 1);
}

QString DeviceNotes::note(const Known &known)
{
    const HostDevice &device = known.device;
    const QString place = known.isPresent ? known.place : QStringLiteral("nowhere");
    const QJsonObject fields {
        {QStringLiteral("name"), known.name},
        {QStringLiteral("kind"), wordOf(device.kind)},
        {QStringLiteral("place"), place},
        {QStringLiteral("started"), device.isStarted},
        {QStringLiteral("problem"), static_cast<int>(device.problem)},
        {QStringLiteral("description"), device.description},
        {QStringLiteral("hardwareId"), device.hardwareId},
        {QStringLiteral("instanceId"), device.instanceId},
    };
    const auto kind = tarnRecording::RequestRecord::Kind::Device;
    const std::string text = compactJson(fields).toStdString();
    isFirst ? journal.noteStart(kind, text) : journal.note(kind, text);
    return QStringLiteral("  %1: %2, %3, %4, %5")
        .arg(known.name, device.description, place, stateText(device), device.instanceId);
}

} // namespace tarnctl
