#include "conformance/text_pattern.h"

#include <utility>

namespace tarnTest {
namespace {

const std::pair<QString, QString> places[] = {
    {QStringLiteral("{number}"), QStringLiteral("-?\\d+")},
    {QStringLiteral("{quoted}"), QStringLiteral("\".*\"")},
    {QStringLiteral("{text}"), QStringLiteral(".*")},
};

// The place that begins here, if one does.
const std::pair<QString, QString> *placeAt(const QString &pattern, qsizetype position)
{
    for (const auto &place : places) {
        if (QStringView(pattern).sliced(position).startsWith(place.first))
            return &place;
    }
    return nullptr;
}

} // namespace

TextPattern::TextPattern(const QString &pattern)
{
    const QString text = QString(pattern).replace(QStringLiteral("{tab}"), QStringLiteral("\t"));
    QString expressionText;
    QString fixed;
    for (qsizetype at = 0; at < text.size();) {
        const auto *place = placeAt(text, at);
        if (!place) {
            fixed += text.at(at++);
            continue;
        }
        if (!values)
            fixedBeginning = fixed;
        values = true;
        expressionText += QRegularExpression::escape(fixed) + place->second;
        fixed.clear();
        at += place->first.size();
    }
    if (!values) {
        fixedBeginning = fixed;
        return;
    }
    expressionText += QRegularExpression::escape(fixed);
    expression.setPattern(QRegularExpression::anchoredPattern(expressionText));
    expression.setPatternOptions(QRegularExpression::DotMatchesEverythingOption);
}

bool TextPattern::fits(const QString &text) const
{
    if (!values)
        return text == fixedBeginning;
    return text.startsWith(fixedBeginning) && expression.match(text).hasMatch();
}

} // namespace tarnTest
