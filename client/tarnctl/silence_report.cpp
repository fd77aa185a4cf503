#include "silence_report.h"

namespace tarnctl {

namespace {

constexpr QLatin1StringView silenceText(
    "The service has fallen silent, as when another client has come and gone; connecting again.");
constexpr QLatin1StringView takenOverText(
    "The service falls silent again and again, because of another client or because it hangs; trying once a "
    "minute, and at once after reconnect.");

} // namespace

SilenceReport::SilenceReport(std::chrono::milliseconds timeOfALongTalk)
    : longTalk(timeOfALongTalk)
{ }

void SilenceReport::noteConnection()
{
    sinceConnected.start();
}

void SilenceReport::forget()
{
    isTold = false;
}

std::optional<QString> SilenceReport::takeText(bool isRepeated)
{
    if (sinceConnected.isValid() && sinceConnected.hasExpired(longTalk.count()))
        forget();
    if (isTold)
        return std::nullopt;
    isTold = isRepeated;
    return (isRepeated ? takenOverText : silenceText).toString();
}

} // namespace tarnctl
