#include "panel/client/update_result.h"

namespace tarnPanel {

QString resultText(const tarn::FirmwareResult &result)
{
    QStringList lines {result.text};
    if (result.outcome != tarn::FirmwareOutcome::Done) {
        lines << (result.isUntouched ? QStringLiteral("This update has not changed the device.")
                                     : QStringLiteral("The device may have been changed."));
    }
    lines << result.advice;
    lines.removeAll({});
    return lines.join(u'\n');
}

Tone toneOf(tarn::FirmwareOutcome outcome)
{
    return outcome == tarn::FirmwareOutcome::Done ? Tone::Good : Tone::Bad;
}

} // namespace tarnPanel
