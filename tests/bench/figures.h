#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace tarnBench {

// Measured values of one kind.
class Figures
{
public:
    void add(double value) { values.push_back(value); }
    [[nodiscard]] qsizetype count() const { return static_cast<qsizetype>(values.size()); }
    // The smallest value that so large a share of all does not exceed.
    [[nodiscard]] double quantile(double share) const;
    [[nodiscard]] double median() const { return quantile(0.5); }
    [[nodiscard]] double largest() const { return quantile(1); }

private:
    std::vector<double> values;
};

// A table in Markdown, its columns in line for the terminal.
class Table
{
public:
    explicit Table(const QStringList &headings);
    void add(const QStringList &cells);
    void print() const;

private:
    std::vector<QStringList> rows; // the first holds the headings
};

void printHeading(const char *text);
void printNote(const QString &text);

[[nodiscard]] inline QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

} // namespace tarnBench
