#include "panel/client/update_run.h"

#include "panel/client/service_link.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QThreadPool>

namespace tarnPanel {

UpdateRun::UpdateRun(ServiceLink &serviceLink, UpdateMaker maker, const QString &folder, QObject *parent)
    : QObject(parent)
    , link(serviceLink)
    , makeUpdate(std::move(maker))
    , downloadFolder(folder)
{ }

QString UpdateRun::notice(tarn::FirmwareKind kind) const
{
    return makeUpdate(nullptr, kind)->notice();
}

tarn::FirmwareUpdateOptions UpdateRun::optionsOf(const Wish &wish) const
{
    tarn::FirmwareUpdateOptions options;
    if (!downloadFolder.isEmpty())
        options.downloadFolder = downloadFolder;
    if (wish.kind == tarn::FirmwareKind::Mcu && !wish.expectedVersion.isEmpty())
        options.expectedVersion = wish.expectedVersion;
    return options;
}

void UpdateRun::look(
    const Wish &wish, QObject *context, const std::function<void(const QString &)> &use) const
{
    const auto options = optionsOf(wish);
    // The pool's thread only carries it; it is looked at on this one.
    const QPointer<QObject> guard(context);
    QThreadPool::globalInstance()->start([make = makeUpdate, wish, options, guard, use] {
        const auto objection = make(nullptr, wish.kind)->objection(wish.file, options);
        const QString text = objection ? (objection->text + u'\n' + objection->advice).trimmed() : QString();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, use, text] {
                if (guard)
                    use(text);
            },
            Qt::QueuedConnection);
    });
}

void UpdateRun::start(const Wish &wish)
{
    if (isRunning())
        return;
    const bool isMcu = wish.kind == tarn::FirmwareKind::Mcu;
    QStringList options;
    if (isMcu && !wish.expectedVersion.isEmpty())
        options << QStringLiteral("--expect") << wish.expectedVersion;
    link.addToSession(options,
        {isMcu ? QStringLiteral("update-mcu") : QStringLiteral("update-ec"),
            // The command is for another folder.
            QFileInfo(wish.file).absoluteFilePath()});
    update = makeUpdate(&link.client(), wish.kind);
    connect(update.get(), &tarn::FirmwareUpdate::phaseChanged, this, [this](const QString &text) {
        phaseText = text;
        Q_EMIT changed();
    });
    connect(update.get(), &tarn::FirmwareUpdate::ownFileUsed, this, [this](const QString &path) {
        Q_EMIT remarked(
            QStringLiteral("The file %1 lies where the service looks: the service takes it away.").arg(path));
    });
    connect(update.get(), &tarn::FirmwareUpdate::finished, this,
        [this, kind = wish.kind](const tarn::FirmwareResult &result) { finish(kind, result); });
    phaseText = QStringLiteral("preparing the file");
    link.setUpdateText(isMcu ? QStringLiteral("An update of the MCU's firmware runs.")
                             : QStringLiteral("An update of the EC's firmware runs."));
    update->start(wish.file, optionsOf(wish));
    Q_EMIT changed();
}

void UpdateRun::finish(tarn::FirmwareKind kind, const tarn::FirmwareResult &result)
{
    if (result.answer.isEmpty() && !result.command.isEmpty())
        link.note(MessageKind::NotAnswered, result.command + QStringLiteral(": ") + result.text);
    phaseText.clear();
    link.setUpdateText({});
    Q_EMIT changed();
    Q_EMIT finished(kind, result);
}

void UpdateRun::abandon()
{
    if (update)
        update->abandon();
}

std::chrono::milliseconds UpdateRun::elapsed() const
{
    return update ? update->elapsed() : std::chrono::milliseconds(0);
}

} // namespace tarnPanel
