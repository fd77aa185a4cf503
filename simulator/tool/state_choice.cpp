#include "simulator/tool/state_choice.h"

#include "simulator/state_location.h"

#include <QCoreApplication>

#include <vector>

namespace tarnSimulator {

namespace {

StateChoice only(const std::filesystem::path &file)
{
    return {file, {QString::fromStdU16String(file.u16string())}};
}

// Prefers the folder that Qt knows: for a program found by the search path, moduleFile() has none.
std::filesystem::path programFolder()
{
    return QCoreApplication::instance() == nullptr
        ? moduleFile().parent_path()
        : std::filesystem::path(QCoreApplication::applicationDirPath().toStdU16String());
}

} // namespace

StateChoice chooseStateFile(const QString &named)
{
    if (!named.isEmpty())
        return only(named.toStdU16String());
    if (const auto file = stateFileFromEnvironment())
        return only(*file);
    const std::vector<std::filesystem::path> candidates {
        std::filesystem::path("function") / stateFileName,
        stateFileName,
        programFolder() / "function" / stateFileName,
    };
    StateChoice choice;
    for (const std::filesystem::path &candidate : candidates) {
        choice.places << QString::fromStdU16String(candidate.u16string());
        std::error_code ignored;
        if (choice.file.empty() && std::filesystem::exists(candidate, ignored))
            choice.file = candidate;
    }
    if (choice.file.empty()) {
        std::error_code ignored;
        const bool inRunFolder = std::filesystem::is_directory("function", ignored);
        choice.file = inRunFolder ? candidates[0] : candidates[1];
    }
    return choice;
}

QString missingStateText(const StateChoice &choice)
{
    return QStringLiteral(
        "there is no simulated computer in %1.\n"
        "Start the service (./run), name the state file with --state FILE, or make a new computer "
        "with \"tarnsim --state FILE reset\".")
        .arg(choice.places.join(QLatin1String(" or ")));
}

} // namespace tarnSimulator
