#pragma once

#include "host_devices.h"

#include "device/recording/request_record.h"

#include <QList>
#include <QStringList>

#include <functional>

namespace tarnctl {

// Notes the devices of the computer in the journal: all at the first call, and later those that have come,
// have gone or are in another state. What comes later is taken for a part of the graphics box, and so is what
// comes again: those of a box that was attached at the first call are "computer" until it is unplugged, and
// stay so where it never is.
class DeviceNotes
{
public:
    using List = std::function<QList<HostDevice>()>;

    DeviceNotes(List list, tarnRecording::RequestJournal &journal);

    // A line for a person for each that was noted.
    [[nodiscard]] QStringList noteChanges();

private:
    struct Known
    {
        HostDevice device;
        QString name;
        QString place; // where it is while it is present
        bool isPresent = true;
    };

    [[nodiscard]] Known *find(const HostDevice &device);
    [[nodiscard]] QString freeName(HostDevice::Kind kind) const;
    [[nodiscard]] QString note(const Known &known);

    const List list;
    tarnRecording::RequestJournal &journal;
    QList<Known> all;
    bool isFirst = true;
};

} // namespace tarnctl
