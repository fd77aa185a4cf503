#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// How the test framework shows Qt's texts when an expectation fails. It looks for these beside the types.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << '"' << bytes.toStdString() << '"';
}
