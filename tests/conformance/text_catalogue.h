#pragma once

#include "conformance/text_pattern.h"

#include <vector>

namespace tarnTest {

// One text that the service says or takes. A line of the catalogue reads
//     warning "set ec PL1 to  {number}  failed when write."
// and goes on after the closing quote with " not here: " and the reason where no test of this system can see
// it. A line with {profile}, {profile number} or {accessory} is a text for each of those that the service
// knows.
struct CatalogueText
{
    QString group; // name of the file
    QString kind;
    QString text;
    QString notHere;
    TextPattern pattern;
};

// All texts of a folder of such files, in the order of their names; "#" begins a comment. An empty list and
// an error when a line cannot be read.
[[nodiscard]] std::vector<CatalogueText> readCatalogue(const QString &folder, QString &error);

// The same for the lines of one file.
[[nodiscard]] std::vector<CatalogueText> readCatalogueLines(
    const QString &group, const QStringList &lines, QString &error);

} // namespace tarnTest
