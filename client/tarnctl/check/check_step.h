#pragma once

#include <QLatin1StringView>
#include <QList>

#include <chrono>

namespace tarnctl {

// A thing that a step does. What is remembered is the value of the answer, until the step ends.
struct CheckItem
{
    enum class Kind {
        Ask, // sends a request; its answer has to match
        Remember, // the same, and keeps the answer; when it does not match, the rest of the step is left out
        RememberSettled, // the same, once two answers agree: for what the service first has to read
        Repeat, // asks until the answer matches, for what the service first has to notice
        Await, // waits for a notification, which the person causes
        Look, // asks the person what can be seen
        PutBack, // sends the command with what was remembered, also after a failure or an interruption
        Tell, // says something
        FreeConnector, // has the person free it; the rest is left out while a graphics box is on it
        ReleasedBox, // the rest is left out unless the person has released the box by its key
    };

    Kind kind = Kind::Ask;
    QLatin1StringView command {}; // of Await: the notification
    QLatin1StringView data {}; // of PutBack: empty for what was remembered
    QLatin1StringView expected {}; // a regular expression for the whole answer; empty: anything
    QLatin1StringView text {}; // what is expected, or what is said or asked
    // After which the answer counts as late; 0: the usual time.
    std::chrono::milliseconds lateAfter {0};
    // Of PutBack: what then has to answer what was remembered, and what is said in any case.
    QLatin1StringView readBack {};
    QLatin1StringView readBackData {};
    QLatin1StringView afterwards {};
};

enum class CheckPart { Reading, Changing, Hands };

// A step of the check. It runs only with its accessory: the name that the service gives it, "any" for any
// one; empty: with and without.
struct CheckStep
{
    CheckPart part;
    QLatin1StringView name;
    QLatin1StringView accessory;
    QLatin1StringView title;
    QList<CheckItem> items;
};

inline constexpr QLatin1StringView anyAccessory("any");
inline constexpr QLatin1StringView noAccessory("disconnected");
inline constexpr QLatin1StringView graphicsAccessory("graphics");

// Those that only ask.
[[nodiscard]] QList<CheckStep> readingSteps();
// Those that change something, and put it back as far as that is possible.
[[nodiscard]] QList<CheckStep> changingSteps();
// Those in which somebody plugs something in, unplugs it, or presses a key.
[[nodiscard]] QList<CheckStep> handsSteps();
// Brings those with a graphics box into the order for a box that is attached already: it is in use, so its
// key comes first, and it is plugged in again at the end.
void beginWithTheBox(QList<CheckStep> &steps);
// All in their order.
[[nodiscard]] QList<CheckStep> checkSteps();

// With which data the command is sent to bring back what was remembered: the same word, but for a profile,
// whose number is answered, its name.
[[nodiscard]] QString wordToPutBack(QLatin1StringView command, const QString &remembered);

} // namespace tarnctl
