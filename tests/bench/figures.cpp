#include "figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarnBench {

double Figures::quantile(double share) const
{
    if (values.empty())
        return std::nan("");
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    const double rank = std::ceil(share * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

Table::Table(const QStringList &headings)
    : rows {headings}
{ }

void Table::add(const QStringList &cells)
{
    rows.push_back(cells);
}

void Table::print() const
{
    std::vector<qsizetype> widths;
    for (qsizetype column = 0; column < rows.front().size(); ++column) {
        qsizetype widest = 4;
        for (const QStringList &cells : rows)
            widest = std::max(widest, cells.value(column).size());
        widths.push_back(widest);
    }
    const auto printRow = [&widths](const QStringList &cells) {
        QString line = QStringLiteral("|");
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const QString cell = cells.value(static_cast<qsizetype>(column));
            // Names to the left, figures to the right.
            const QString padded =
                column == 0 ? cell.leftJustified(widths[column]) : cell.rightJustified(widths[column]);
            line += QLatin1Char(' ') + padded + QStringLiteral(" |");
        }
        std::printf("%s\n", qPrintable(line));
    };
    printRow(rows.front());
    QStringList rule;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        QString dashes(widths[column], QLatin1Char('-'));
        if (column > 0)
            dashes.back() = QLatin1Char(':');
        rule << dashes;
    }
    printRow(rule);
    std::for_each(rows.begin() + 1, rows.end(), printRow);
    std::fflush(stdout);
}

void printHeading(const char *text)
{
    std::printf("\n### %s\n\n", text);
}

void printNote(const QString &text)
{
    std::printf("\n%s\n", qPrintable(text));
    std::fflush(stdout);
}

} // namespace tarnBench
