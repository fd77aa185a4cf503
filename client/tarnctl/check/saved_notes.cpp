#include "saved_notes.h"

#include "client/tarnctl/answer_text.h"
#include "platform/paths.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace tarnctl {

namespace {

constexpr qint64 longestSaved = 65'536; // bytes; a file of the service has less than one thousand

} // namespace

void noteSaved(const Installation &installation, tarnRecording::RequestJournal &journal)
{
    for (const QString &path :
        {tarnPlatform::path::savedPowerProfile, tarnPlatform::path::savedGraphicsColour}) {
        QFile file(installation.path(path));
        if (file.exists() && !file.open(QIODevice::ReadOnly))
            continue; // unknown
        const QByteArray content = file.isOpen() ? file.read(longestSaved) : QByteArray();
        const QJsonObject fields {{QStringLiteral("file"), QFileInfo(path).fileName()},
            {QStringLiteral("content"), QString::fromLatin1(content.toBase64())}};
        journal.noteStart(tarnRecording::RequestRecord::Kind::Saved, compactJson(fields).toStdString());
    }
}

} // namespace tarnctl
