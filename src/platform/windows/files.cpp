#include "platform/files.h"

#include "platform/windows/unique_handle.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tarnPlatform {
namespace {

std::wstring nativePath(const QString &path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

} // namespace

bool flushToDisk(const QString &file)
{
    const UniqueHandle opened(CreateFileW(nativePath(file).c_str(), GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return opened && FlushFileBuffers(opened.get());
}

bool replaceFile(const QString &from, const QString &to)
{
    const std::wstring target = nativePath(to);
    const DWORD attributes = GetFileAttributesW(target.c_str());
    // Other systems replace a write-protected file, but MoveFileEx does not.
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
        SetFileAttributesW(target.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    return MoveFileExW(
        nativePath(from).c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

// Without waiting until it is on the disk.
bool renameFile(const QString &from, const QString &to)
{
    return MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(), 0);
}

// Qt opens files so that they cannot be renamed meanwhile, and looks for their end before it writes.
bool openToAppend(QFile &file)
{
    UniqueHandle opened(CreateFileW(nativePath(file.fileName()).c_str(),
        FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!opened)
        return false;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(opened.get()), _O_APPEND | _O_BINARY);
    if (descriptor < 0)
        return false;
    static_cast<void>(opened.release()); // the descriptor closes it
    if (file.open(descriptor, QIODevice::Append | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        return true;
    _close(descriptor);
    return false;
}

// Qt asks for all that the system knows of the file, which takes Wine half a millisecond.
qint64 sizeOfOpened(const QFile &file)
{
    LARGE_INTEGER size = {};
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    return GetFileSizeEx(handle, &size) ? size.QuadPart : 0;
}

} // namespace tarnPlatform
