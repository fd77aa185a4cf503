#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>

namespace tarn {

// Cuts a byte stream into top-level JSON objects. The service separates its messages by time only, so one
// read can bring several of them or a part of one.
class JsonSplitter
{
public:
    struct Harvest
    {
        // Complete objects, judged by their braces only: they may still be invalid JSON.
        QByteArrayList documents {};
        // Bytes that belong to no object, blanks left out.
        QByteArray garbage {};
    };

    // The service's messages have a few hundred bytes; an object of this size is no message.
    static constexpr qsizetype defaultLimit = 1 << 20;

    explicit JsonSplitter(qsizetype documentLimit = defaultLimit);

    [[nodiscard]] Harvest feed(QByteArrayView bytes);
    [[nodiscard]] bool isInsideDocument() const;
    [[nodiscard]] qsizetype bufferedSize() const;
    // Drops the incomplete object and returns its bytes.
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

} // namespace tarn
