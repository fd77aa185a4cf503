#include "update_objection.h"

#include "staged_firmware.h"

#include <QFileInfo>

namespace tarn {

namespace {

// Advises the plain request, because it carries only the file's name: any user can send it.
FirmwareResult otherUserResult(
    const OtherUser &user, const UpdatePlan &plan, const QString &file, const QString &programName)
{
    FirmwareResult result;
    result.outcome = FirmwareOutcome::OtherUser;
    result.text =
        QStringLiteral("The user at the console is %1, but %2 runs as %3. The service \"Tarn Service\" looks "
                       "for the file in the download folder of %1.")
            .arg(user.atConsole, programName, user.own);
    result.advice =
        QStringLiteral("Run %1 as %2, or put the file there and send %3 with its name \"%4\".")
            .arg(programName, user.atConsole, plan.steps.back().command, QFileInfo(file).fileName());
    result.ownUser = user.own;
    result.consoleUser = user.atConsole;
    return result;
}

} // namespace

FirmwareResult badFileResult(const QString &text)
{
    FirmwareResult result;
    result.outcome = FirmwareOutcome::BadFile;
    result.text = text;
    return result;
}

std::optional<FirmwareResult> updateObjection(
    const QString &file, const FirmwareUpdateOptions &options, const UpdateSetting &setting)
{
    if (const std::optional<QString> objection = StagedFirmware::objection(file, setting.plan.kind))
        return badFileResult(*objection);
    if (options.skipPrecautions)
        return std::nullopt;
    // The service would flash a file of that name in the other user's folder in place of this one.
    const std::optional<OtherUser> otherUser = setting.findOtherUser();
    if (!otherUser)
        return std::nullopt;
    return otherUserResult(*otherUser, setting.plan, file, options.programName);
}

} // namespace tarn
