#pragma once

#include "tarn/client.h"

#include <QMetaMethod>

#include <array>
#include <optional>
#include <vector>

namespace tarn {

enum class KeptValue { Accessory, BatteryLevel, Charging, KvaneBatteryLevel, KvaneCharging, KvaneLight };
inline constexpr std::size_t keptValueCount = 6;

// What is to be known about one of them.
struct KeptValueRow
{
    KeptValue value;
    // The command that asks for it, and the notification that announces it.
    QLatin1StringView query;
    QLatin1StringView notification;
    // As a number: an Accessory, a level, a byte, or 0 and 1; nothing where the text says that it is not
    // known.
    std::optional<int> (*parse)(const QString &text);
    QMetaMethod (*signal)();
    void (*announce)(Client &client, std::optional<int> value);
};

// What the numbers stand for.
[[nodiscard]] std::optional<bool> asSwitch(std::optional<int> number);
[[nodiscard]] std::optional<Accessory> asAccessory(std::optional<int> number);

[[nodiscard]] const std::array<KeptValueRow, keptValueCount> &keptValueRows();
[[nodiscard]] const KeptValueRow &rowOf(KeptValue value);

// The values that an application listens to: what they are, and which of them have to be read. Functions that
// may change a value return whether they did.
class KeptValues
{
public:
    [[nodiscard]] std::optional<int> now(KeptValue value) const;

    [[nodiscard]] bool isWanted(KeptValue value) const;
    // One that becomes wanted has to be read; one that is no longer wanted is forgotten.
    [[nodiscard]] bool setWanted(KeptValue value, bool isWanted);
    // The connection has ended, so it has to be read again.
    [[nodiscard]] bool forget(KeptValue value);
    // The next that has to be read.
    [[nodiscard]] std::optional<KeptValue> nextToRead() const;
    void noteRequest(KeptValue value);
    // It keeps its value meanwhile.
    void readAgain(KeptValue value);
    [[nodiscard]] bool takeAnswer(KeptValue value, const std::optional<int> &answer);
    // Counts only for a value that has been read. One that is being read is read again: its answer may have
    // been made before the notification.
    [[nodiscard]] bool takeNotification(KeptValue value, const std::optional<int> &announced);

private:
    enum class Reading { Done, Due, UnderWay, OutOfDate };

    struct Kept
    {
        bool isWanted = false;
        Reading reading = Reading::Due;
        std::optional<int> value {};
    };

    [[nodiscard]] Kept &at(KeptValue value);

    std::array<Kept, keptValueCount> values;
};

} // namespace tarn
