#include "json_splitter.h"

#include <utility>

namespace tarn {

namespace {

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

// JSON has no bare control characters in strings: one of them shows that a quote or the rest of a message is
// missing.
bool breaksString(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20;
}

} // namespace

JsonSplitter::JsonSplitter(qsizetype documentLimit)
    : limit(documentLimit)
{ }

JsonSplitter::Harvest JsonSplitter::feed(QByteArrayView bytes)
{
    Harvest harvest;
    for (const char byte : bytes) {
        if (depth == 0)
            takeOutside(byte, harvest);
        else
            takeInside(byte, harvest);
    }
    return harvest;
}

bool JsonSplitter::isInsideDocument() const
{
    return depth > 0;
}

qsizetype JsonSplitter::bufferedSize() const
{
    return document.size();
}

QByteArray JsonSplitter::abandon()
{
    depth = 0;
    inString = false;
    escaped = false;
    return std::exchange(document, {});
}

void JsonSplitter::takeOutside(char byte, Harvest &harvest)
{
    if (byte == '{') {
        document = QByteArray(1, byte);
        depth = 1;
    } else if (!isBlank(byte)) {
        harvest.garbage.append(byte);
    }
}

void JsonSplitter::takeInside(char byte, Harvest &harvest)
{
    document.append(byte);
    if (document.size() > limit) {
        harvest.garbage.append(abandon());
        return;
    }
    if (inString) {
        takeInString(byte, harvest);
        return;
    }
    if (byte == '"')
        inString = true;
    else if (byte == '{')
        ++depth;
    else if (byte == '}' && --depth == 0)
        harvest.documents.append(std::exchange(document, {}));
}

void JsonSplitter::takeInString(char byte, Harvest &harvest)
{
    if (breaksString(byte))
        harvest.garbage.append(abandon());
    else if (escaped)
        escaped = false;
    else if (byte == '\\')
        escaped = true;
    else if (byte == '"')
        inString = false;
}

} // namespace tarn
