#include "simulator/shared_mapping.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarnSimulator {

namespace {

class FileDescriptor
{
public:
    explicit FileDescriptor(int number)
        : descriptor(number)
    { }

    ~FileDescriptor()
    {
        if (descriptor >= 0)
            ::close(descriptor);
    }

    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    [[nodiscard]] int number() const { return descriptor; }

private:
    int descriptor;
};

std::string lastError()
{
    return std::generic_category().message(errno);
}

} // namespace

std::optional<SharedMapping> SharedMapping::open(const std::filesystem::path &file, std::string &error)
{
    const FileDescriptor descriptor(::open(file.c_str(), O_RDWR | O_CLOEXEC));
    struct stat facts = {};
    if (descriptor.number() < 0 || ::fstat(descriptor.number(), &facts) != 0) {
        error = lastError();
        return std::nullopt;
    }
    const auto fileLength = static_cast<std::size_t>(facts.st_size);
    if (fileLength == 0)
        return SharedMapping(nullptr, 0);
    void *mapped = ::mmap(nullptr, fileLength, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.number(), 0);
    if (mapped == MAP_FAILED) {
        error = lastError();
        return std::nullopt;
    }
    return SharedMapping(mapped, fileLength);
}

SharedMapping::~SharedMapping()
{
    if (start != nullptr)
        ::munmap(start, length);
}

// A hard link, unlike a rename, does not replace a file that is there.
bool renameUnlessThere(
    const std::filesystem::path &file, const std::filesystem::path &finalName, std::string &error)
{
    if (::link(file.c_str(), finalName.c_str()) == 0) {
        ::unlink(file.c_str());
        return true;
    }
    if (errno == EEXIST)
        return true;
    error = lastError();
    return false;
}

} // namespace tarnSimulator
