#include "checks.h"
#include "shared_file.h"

#include "platform/paths.h"

#include <tarn/values.h>

#include <QFileInfo>

namespace tarnctl {

namespace {

// The number of a profile.
bool isProfile(const QByteArray &content)
{
    bool isNumber = false;
    const int number = content.trimmed().toInt(&isNumber);
    return isNumber && !tarn::nameOf(static_cast<tarn::Profile>(number)).isEmpty();
}

// The number of a colour in the section in which the service looks for it. "off" is never saved.
bool isColour(const QByteArray &content)
{
    const QByteArray key = "graphicsColor=";
    bool inGeneralSection = true; // lines before the first section belong to it
    for (const QByteArray &whole : content.split('\n')) {
        const QByteArray line = whole.trimmed();
        if (line.startsWith('['))
            inGeneralSection = line == "[General]";
        if (!inGeneralSection || !line.startsWith(key))
            continue;
        bool isNumber = false;
        const auto colour = static_cast<tarn::Colour>(line.mid(key.size()).toInt(&isNumber));
        return isNumber && !tarn::nameOf(colour).isEmpty() && colour != tarn::Colour::Shutdown;
    }
    return false;
}

struct SettingsFile
{
    QString subject;
    QString path;
    bool (*isSane)(const QByteArray &content);
    QString otherwise; // what the service then does
};

const SettingsFile settingsFiles[] = {
    {QStringLiteral("saved profile"), tarnPlatform::path::savedPowerProfile, isProfile,
        QStringLiteral("the profile is balance")},
    {QStringLiteral("saved colour"), tarnPlatform::path::savedGraphicsColour, isColour,
        QStringLiteral("the colour is white")},
};

Finding findingOf(const Case &examined, const SettingsFile &settings)
{
    const QString path = examined.installation.path(settings.path);
    const QFileInfo info(path);
    if (!info.exists())
        return {Verdict::Good, settings.subject, QStringLiteral("none yet, %1").arg(settings.otherwise)};
    const QString whatToDo =
        QStringLiteral("stop the service, delete the file, start the service; %1").arg(settings.otherwise);
    if (!info.isFile() || info.size() > mostSettingsBytes)
        return {Verdict::Bad, settings.subject, QStringLiteral("%1 is no settings file").arg(path), whatToDo};
    QString problem;
    const auto content = readStart(path, problem, mostSettingsBytes);
    if (!content)
        return {Verdict::Bad, settings.subject, QStringLiteral("%1: %2").arg(path, problem), whatToDo};
    if (!settings.isSane(*content))
        return {Verdict::Bad, settings.subject, QStringLiteral("%1 makes no sense").arg(path), whatToDo};
    return {Verdict::Good, settings.subject, path};
}

} // namespace

Findings checkSettings(const Case &examined)
{
    Findings findings;
    for (const SettingsFile &settings : settingsFiles)
        findings << findingOf(examined, settings);
    return findings;
}

} // namespace tarnctl
