#pragma once

#include "conformance/text_catalogue.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <map>
#include <utility>

namespace tarnTest {

// What the tests have recorded, laid beside the catalogue.
class Sightings
{
public:
    explicit Sightings(std::vector<CatalogueText> catalogue);

    // Takes what the processes of a test run have left in a folder; false and an error when it cannot be
    // read.
    bool readFolder(const QString &folder, QString &error);
    // Takes the content of one such file.
    void read(const QString &record);
    // Finds out which texts have been seen. To be called once, after everything has been read.
    void join();

    [[nodiscard]] const std::vector<CatalogueText> &texts() const { return catalogue; }
    // Names of the tests that saw the text of this index, sorted.
    [[nodiscard]] QStringList testsOf(std::size_t index) const;
    // One line for each text that should have been seen and was not, or that was seen and should not, or at
    // another level of the log, and for each line of the log, or of a process, that is no text of the
    // catalogue.
    [[nodiscard]] QStringList complaints() const;

private:
    using Tests = QSet<QString>;
    void joinOne(const QString &kind, const QString &text, const Tests &tests);

    std::vector<CatalogueText> catalogue;
    QMultiHash<QString, std::size_t> fixedTexts;
    std::vector<std::size_t> textsWithValues;
    std::map<std::pair<QString, QString>, Tests> recorded; // by kind and text
    std::vector<Tests> seenBy;
    QStringList wrongKinds;
    QStringList unlisted;
};

} // namespace tarnTest
