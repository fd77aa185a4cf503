#include "shared_file_opening.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tarnctl {

// Qt's own way to open a file would keep the service from putting it aside meanwhile.
bool openShared(QFile &file, QString &problem)
{
    const std::wstring name = QDir::toNativeSeparators(file.fileName()).toStdWString();
    const HANDLE handle =
        CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        problem = qt_error_string(static_cast<int>(GetLastError())).trimmed();
        return false;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDONLY | _O_BINARY);
    if (descriptor >= 0 && file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    if (descriptor >= 0)
        _close(descriptor); // closes the handle as well
    else
        CloseHandle(handle);
    problem = QStringLiteral("it cannot be opened");
    return false;
}

} // namespace tarnctl
