#include "pipe_opening.h"

#include "pipe_address.h"

#include <windows.h>

#include <string>

namespace tarn {

namespace {

PipeFailure::Kind kindOf(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return PipeFailure::Kind::NoService;
    case ERROR_ACCESS_DENIED:
        return PipeFailure::Kind::AccessDenied;
    case ERROR_PIPE_BUSY:
        return PipeFailure::Kind::Busy;
    default:
        return PipeFailure::Kind::Other;
    }
}

} // namespace

// QLocalSocket's own connectToServer() waits up to 5 s for a busy pipe. Opening the pipe does not wait, so it
// needs no thread of its own: a busy pipe is reported at once. The server may see who the client is, and not
// act for it.
std::optional<PipeFailure> beginOpening(QLocalSocket &socket, const QString &name)
{
    const std::wstring path = pipeAddress(name).text.toStdWString();
    const HANDLE pipe = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
        FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        return PipeFailure {kindOf(error), qt_error_string(static_cast<int>(error))};
    }
    if (socket.setSocketDescriptor(reinterpret_cast<qintptr>(pipe)))
        return std::nullopt;
    CloseHandle(pipe);
    return PipeFailure {PipeFailure::Kind::Other, socket.errorString()};
}

} // namespace tarn
