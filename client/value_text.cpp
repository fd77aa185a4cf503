#include "value_text.h"

namespace tarn {

namespace {

constexpr int fullPercent = 100;
constexpr int largestByte = 255;

std::optional<int> numberIn(const QString &text, int most)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber, 10);
    return isNumber && number >= 0 && number <= most ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<int> percentIn(const QString &text)
{
    return numberIn(text, fullPercent);
}

std::optional<bool> chargingIn(const QString &text)
{
    const std::optional<int> number = numberIn(text, 1);
    return number ? std::optional(*number == 1) : std::nullopt;
}

std::optional<int> byteIn(const QString &text)
{
    return numberIn(text, largestByte);
}

std::optional<Profile> profileNumberedIn(const QString &text)
{
    const std::optional<int> number = numberIn(text, largestByte);
    if (!number)
        return std::nullopt;
    const auto profile = static_cast<Profile>(*number);
    return nameOf(profile).isEmpty() ? std::nullopt : std::optional(profile);
}

std::optional<bool> switchIn(const QString &text)
{
    const QString word = text.toLower();
    if (word == QLatin1StringView("on"))
        return true;
    return word == QLatin1StringView("off") ? std::optional(false) : std::nullopt;
}

std::optional<QString> textIn(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

std::optional<QString> serialNumberIn(const QString &text)
{
    return text == QLatin1StringView("default") ? std::nullopt : textIn(text);
}

} // namespace tarn
