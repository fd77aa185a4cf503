#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>

namespace tarnClient {

// Cuts a byte stream into top-level JSON objects. The service separates its messages by time only, so that
// several of them, or a part of one, can arrive in one read.
class JsonSplitter
{
public:
    struct Harvest
    {
        // Complete objects by their braces; whether they are valid JSON is for the parser to say.
        QByteArrayList documents {};
        // Bytes that belong to no object, blanks left out.
        QByteArray garbage {};
    };

    // The service's messages have a few hundred bytes; what grows to this size is no message.
    static constexpr qsizetype defaultLimit = 1 << 20;

    explicit JsonSplitter(qsizetype documentLimit = defaultLimit);

    [[nodiscard]] Harvest feed(QByteArrayView bytes);
    [[nodiscard]] bool isInsideDocument() const;
    [[nodiscard]] qsizetype bufferedSize() const;
    // Gives up the object that has begun, returns its bytes and starts afresh.
    QByteArray abandon();

private:
    void takeOutside(char byte, Harvest &harvest);
    void takeInside(char byte, Harvest &harvest);
    void takeInString(char byte, Harvest &harvest);

    qsizetype limit;
    QByteArray document;
    int depth = 0;
    bool inString = false;
    bool escaped = false;
};

} // namespace tarnClient
