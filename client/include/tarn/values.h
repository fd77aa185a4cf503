#pragma once

#include <QObject>
#include <QString>

#include <optional>

// The words of the protocol as types. nameOf() gives the word that is written to the service; the functions
// whose names end in "Named" read one and give nothing for a word that stands for no value, such as "unknown"
// or "hide". All functions may be called from any thread.
namespace tarn {

Q_NAMESPACE

// What is attached to the expansion connector.
enum class Accessory {
    Disconnected,
    Dock,
    GraphicsBox,
    KVane,
    // Attached, but none that the service knows.
    Unknown,
};
Q_ENUM_NS(Accessory)

// A power profile. The values are the numbers that the service gives them.
enum class Profile { High = 0, Balance = 1, Low = 2 };
Q_ENUM_NS(Profile)

// A colour of the graphics box's light.
enum class Colour {
    White,
    Red,
    Yellow,
    Green,
    Cyan,
    Blue,
    PurplishRed,
    // The light is off. As an answer also: it shows a colour of its own, or could not be read.
    Shutdown,
};
Q_ENUM_NS(Colour)

// How a request ended.
enum class Outcome {
    // The service answered.
    Answered,
    // The service answered that it could not do it.
    Failed,
    // Written to the service, which never answers this request.
    Sent,
    // Written to the service, and no answer came within the limit. It may have been carried out, or still be.
    NoAnswer,
    // There is no connection, or it ended before the answer: see Reply::wasSent().
    ServiceGone,
    // Not written to the service, because it cannot be sent: Reply::reason() says why.
    Refused,
};
Q_ENUM_NS(Outcome)

[[nodiscard]] QString nameOf(Accessory accessory);
[[nodiscard]] QString nameOf(Profile profile);
[[nodiscard]] QString nameOf(Colour colour);

[[nodiscard]] std::optional<Accessory> accessoryNamed(const QString &name);
[[nodiscard]] std::optional<Profile> profileNamed(const QString &name);
[[nodiscard]] std::optional<Colour> colourNamed(const QString &name);

} // namespace tarn
