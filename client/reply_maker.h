#pragma once

#include "tarn/reply.h"

#include <chrono>

namespace tarn {

// The message as an application sees it: without the mark by which answers are recognised.
[[nodiscard]] QJsonObject withoutMark(QJsonObject message);

// Makes the replies that futures end with.
class ReplyMaker
{
public:
    explicit ReplyMaker(const QString &command);

    // The request was written this long ago.
    ReplyMaker &sent(std::chrono::milliseconds waited);
    // Takes the outcome and the value from the service's answer.
    [[nodiscard]] Reply answered(const QJsonObject &answer);
    [[nodiscard]] Reply ended(Outcome outcome, const QString &reason = {});

private:
    Reply reply;
};

} // namespace tarn
