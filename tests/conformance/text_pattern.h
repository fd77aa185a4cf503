#pragma once

#include <QRegularExpression>
#include <QString>

namespace tarnTest {

// A text with places for values: {number}, {quoted} (in double quotes), {text} (anything, nothing as well),
// and {tab}, which stands for itself.
class TextPattern
{
public:
    explicit TextPattern(const QString &pattern);

    // Every text that fits begins with this; it is the whole text where there is no place for a value.
    [[nodiscard]] const QString &beginning() const { return fixedBeginning; }
    [[nodiscard]] bool hasValues() const { return values; }
    [[nodiscard]] bool fits(const QString &text) const;

private:
    QString fixedBeginning;
    bool values = false;
    QRegularExpression expression;
};

} // namespace tarnTest
