#include "platform/durable_files.h"

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
    return MoveFileExW(
        nativePath(from).c_str(), nativePath(to).c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

} // namespace tarnPlatform
