#pragma once

#include <tarn/values.h>

#include <QJsonObject>
#include <QString>

#include <chrono>
#include <optional>
#include <utility>

namespace tarn {

// The end of one request. A value, to be copied and read on any thread.
class Reply
{
public:
    // Refused, of no command.
    Reply() = default;

    [[nodiscard]] Outcome outcome() const { return ending; }
    [[nodiscard]] bool isAnswered() const { return ending == Outcome::Answered; }
    [[nodiscard]] QString command() const { return commandName; }
    // The "data" or "result" in which the service answers this command, unchanged. Empty when no answer came,
    // and when the answer has neither.
    [[nodiscard]] QString value() const { return answeredValue; }
    // The whole answer without the mark by which it was recognised; empty when none came.
    [[nodiscard]] QJsonObject answer() const { return wholeAnswer; }
    // False when the service cannot have read the request.
    [[nodiscard]] bool wasSent() const { return sent; }
    // From the writing of the request to its end; 0 when it was not written.
    [[nodiscard]] std::chrono::milliseconds waited() const { return waitingTime; }
    // Why there is no answer, as an English sentence; empty for Answered and Sent.
    [[nodiscard]] QString reason() const { return reasonText; }

private:
    friend class ReplyMaker;

    Outcome ending = Outcome::Refused;
    QString commandName;
    QString answeredValue;
    QJsonObject wholeAnswer;
    bool sent = false;
    std::chrono::milliseconds waitingTime {0};
    QString reasonText;
};

// A reply whose value is also given as a type.
template <typename T> class ReplyWith : public Reply
{
public:
    ReplyWith() = default;
    ReplyWith(const Reply &reply, std::optional<T> typedValue)
        : Reply(reply)
        , typed(std::move(typedValue))
    { }

    // Nothing unless the service answered with a value: also for the words by which it says that it could not
    // read one.
    [[nodiscard]] std::optional<T> result() const { return typed; }

private:
    std::optional<T> typed;
};

// The answer to getMcuUpdateParameters.
struct McuUpdateParameters
{
    // As the service gives it: "1.23" may stand for 1, 2 and 3 as well as for 1 and 23.
    QString mcuVersion;
    std::optional<int> hardwareVersion;
    std::optional<int> accessoryCode;
};

} // namespace tarn
