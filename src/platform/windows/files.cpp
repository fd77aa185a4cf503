#include "platform/files.h"

#include "platform/windows/unique_handle.h"

#include <QDir>

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

} // namespace tarnPlatform
