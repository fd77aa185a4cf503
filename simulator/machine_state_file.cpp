#include "simulator/machine_state_file.h"

#include "simulator/power_on.h"
#include "simulator/value_text.h"

#include <cerrno>
#include <fstream>
#include <memory>
#include <random>

namespace tarnSimulator {

namespace {

std::string quoted(const std::filesystem::path &file)
{
    const std::u8string name = file.u8string();
    // Not "..." + string: GCC 12 warns of an overflow that cannot happen.
    std::string text = "\"";
    text.append(name.begin(), name.end());
    return text + '"';
}

// Removes the temporary file however its creation ends.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::filesystem::path &target)
        : name(target)
    {
        name += ".new-" + hexText(std::random_device {}(), 8);
    }

    ~TemporaryFile()
    {
        std::error_code ignored;
        std::filesystem::remove(name, ignored);
    }

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    [[nodiscard]] const std::filesystem::path &path() const { return name; }

private:
    std::filesystem::path name;
};

// The file gets its name only when it is complete, so no program opens an incomplete one.
bool createFile(const std::filesystem::path &file, std::string &error)
{
    const TemporaryFile temporary(file);
    const auto machine = std::make_unique<MachineState>();
    initialiseState(*machine);

    std::ofstream stream(temporary.path(), std::ios::binary);
    stream.write(reinterpret_cast<const char *>(machine.get()), sizeof(MachineState));
    stream.close();
    if (!stream) {
        error = std::generic_category().message(errno);
        return false;
    }
    return renameUnlessThere(temporary.path(), file, error);
}

// Empty when the file is what this program works with.
std::string objectionTo(const SharedMapping &mapping)
{
    if (mapping.size() < sizeof(StateHeader))
        return "is too short to be the state of a simulated computer";
    const auto *header = static_cast<const StateHeader *>(mapping.data());
    if (header->magic.load() != stateMagic)
        return "is not the state of a simulated computer";
    if (const std::uint32_t version = header->version.load(); version != stateVersion) {
        return "is a simulated computer of version " + std::to_string(version)
            + ", this program needs version " + std::to_string(stateVersion)
            + "; delete the file to begin with a new computer";
    }
    if (header->size.load() != sizeof(MachineState) || mapping.size() < sizeof(MachineState))
        return "is damaged: its size is wrong; delete the file to begin with a new computer";
    return {};
}

} // namespace

std::optional<MachineStateFile> MachineStateFile::open(
    const std::filesystem::path &file, Missing missing, std::string &error)
{
    std::string reason;
    std::error_code ignored;
    const bool isThere = std::filesystem::exists(file, ignored);
    if (!isThere && missing == Missing::IsCreated && !createFile(file, reason)) {
        error = "The simulated computer cannot be created in " + quoted(file) + ": " + reason + ".";
        return std::nullopt;
    }
    auto mapping = SharedMapping::open(file, reason);
    if (!mapping) {
        error = "The simulated computer cannot be opened in " + quoted(file) + ": " + reason + ".";
        return std::nullopt;
    }
    if (const std::string objection = objectionTo(*mapping); !objection.empty()) {
        error = "The file " + quoted(file) + " " + objection + ".";
        return std::nullopt;
    }
    return MachineStateFile(std::move(*mapping), file);
}

} // namespace tarnSimulator
