// What arrives at the client, in pieces of any size. Input: the sizes' seed, then the stream.
#include "client/json_splitter.h"
#include "harness.h"

#include <QJsonDocument>
#include <QJsonObject>

using tarn::JsonSplitter;
using tarnFuzz::require;

namespace {

constexpr qsizetype limit = 512; // of one object, so that it is reached

struct Collected
{
    QByteArrayList documents;
    QByteArray garbage;
    QByteArray rest;

    bool operator==(const Collected &) const = default;
};

// In pieces whose sizes follow from the seed; seed 0: in one piece.
Collected split(const QByteArray &stream, unsigned seed)
{
    JsonSplitter splitter(limit);
    Collected all;
    for (qsizetype start = 0; start < stream.size();) {
        seed = seed * 1103515245U + (seed == 0 ? 0 : 12345U);
        const qsizetype size = seed == 0 ? stream.size() : 1 + (seed >> 16) % 7;
        const QByteArray piece = stream.mid(start, size);
        const JsonSplitter::Harvest harvest = splitter.feed(piece);
        all.documents += harvest.documents;
        all.garbage += harvest.garbage;
        start += piece.size();
    }
    require(splitter.bufferedSize() <= limit, "what is kept is bounded");
    require(splitter.isInsideDocument() == (splitter.bufferedSize() > 0), "only an object is kept");
    all.rest = splitter.abandon();
    require(!splitter.isInsideDocument() && splitter.bufferedSize() == 0, "giving up starts afresh");
    return all;
}

void checkDocument(const QByteArray &document)
{
    require(document.startsWith('{') && document.endsWith('}'), "an object is in braces");
    require(document.size() <= limit, "an object is bounded");
    require(split(document, 0) == Collected {{document}, {}, {}}, "an object is found again");
}

// A message of the service, then the same once more without anything in between.
void checkMessage(const QByteArray &stream)
{
    const QJsonDocument parsed = QJsonDocument::fromJson(stream);
    if (!parsed.isObject())
        return;
    const QByteArray message = parsed.toJson(QJsonDocument::Compact);
    if (message.size() <= limit)
        require(split(message + message, 3) == Collected {{message, message}, {}, {}}, "messages are found");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return -1;
    const QByteArray stream = tarnFuzz::bytesOf(data + 1, size - 1);
    const Collected whole = split(stream, 0);
    require(split(stream, 1U + data[0]) == whole, "the pieces do not matter");
    qsizetype kept = whole.garbage.size() + whole.rest.size();
    for (const QByteArray &document : whole.documents) {
        checkDocument(document);
        kept += document.size();
    }
    const auto isBlank = [](char byte) {
        return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
    };
    const auto blanks = std::count_if(stream.begin(), stream.end(), isBlank);
    require(kept <= stream.size() && kept >= stream.size() - blanks, "nothing but blanks is lost");
    checkMessage(stream);
    return 0;
}
