#include "json_splitter.h"

#include <utility>

namespace tarnClient {

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
    : m_limit(documentLimit)
{ }

JsonSplitter::Harvest JsonSplitter::feed(QByteArrayView bytes)
{
    Harvest harvest;
    for (const char byte : bytes) {
        if (m_depth == 0)
            takeOutside(byte, harvest);
        else
            takeInside(byte, harvest);
    }
    return harvest;
}

bool JsonSplitter::isInsideDocument() const
{
    return m_depth > 0;
}

qsizetype JsonSplitter::bufferedSize() const
{
    return m_document.size();
}

QByteArray JsonSplitter::abandon()
{
    m_depth = 0;
    m_inString = false;
    m_escaped = false;
    return std::exchange(m_document, {});
}

void JsonSplitter::takeOutside(char byte, Harvest &harvest)
{
    if (byte == '{') {
        m_document = QByteArray(1, byte);
        m_depth = 1;
    } else if (!isBlank(byte)) {
        harvest.garbage.append(byte);
    }
}

void JsonSplitter::takeInside(char byte, Harvest &harvest)
{
    m_document.append(byte);
    if (m_document.size() > m_limit) {
        harvest.garbage.append(abandon());
        return;
    }
    if (m_inString) {
        takeInString(byte, harvest);
        return;
    }
    if (byte == '"')
        m_inString = true;
    else if (byte == '{')
        ++m_depth;
    else if (byte == '}' && --m_depth == 0)
        harvest.documents.append(std::exchange(m_document, {}));
}

void JsonSplitter::takeInString(char byte, Harvest &harvest)
{
    if (breaksString(byte))
        harvest.garbage.append(abandon());
    else if (m_escaped)
        m_escaped = false;
    else if (byte == '\\')
        m_escaped = true;
    else if (byte == '"')
        m_inString = false;
}

} // namespace tarnClient
