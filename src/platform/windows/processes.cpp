#include "platform/process_list.h"

#include "platform/windows/unique_handle.h"

#include <QDir>

#include <optional>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

namespace tarnPlatform {
namespace {

constexpr DWORD longestPath = 0x8000; // characters, the end included

// The path of a process's program; empty when it cannot be read, nothing when the process has ended.
std::optional<QString> pathOf(DWORD processId)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process) // no process has the id of one that has gone
        return GetLastError() == ERROR_INVALID_PARAMETER ? std::nullopt : std::optional(QString());
    std::vector<wchar_t> path(longestPath);
    DWORD length = longestPath;
    const bool isRead = QueryFullProcessImageNameW(process.get(), 0, path.data(), &length);
    DWORD exitCode = STILL_ACTIVE; // asked last: one that ends meanwhile is none that cannot be read
    if (GetExitCodeProcess(process.get(), &exitCode) && exitCode != STILL_ACTIVE)
        return std::nullopt; // somebody keeps a handle of it
    if (!isRead)
        return QString();
    return QDir::fromNativeSeparators(QString::fromWCharArray(path.data(), static_cast<int>(length)));
}

class ToolHelpSnapshot final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        const auto seenEnough = visit([&matches](const PROCESSENTRY32W &entry) {
            return matches(QString::fromWCharArray(entry.szExeFile));
        });
        return seenEnough.value_or(false);
    }

    QStringList pathsOf(const QString &fileName) override
    {
        QStringList paths;
        const auto seenEnough = visit([&](const PROCESSENTRY32W &entry) {
            if (QString::fromWCharArray(entry.szExeFile).compare(fileName, Qt::CaseInsensitive) == 0) {
                if (const auto path = pathOf(entry.th32ProcessID))
                    paths << *path;
            }
            return false;
        });
        return seenEnough ? paths : QStringList(QString());
    }

private:
    // Nothing where there is no snapshot.
    [[nodiscard]] static std::optional<bool> visit(
        const std::function<bool(const PROCESSENTRY32W &)> &hasSeenEnough)
    {
        const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
        if (!snapshot)
            return std::nullopt;
        PROCESSENTRY32W entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL found = Process32FirstW(snapshot.get(), &entry); found;
             found = Process32NextW(snapshot.get(), &entry)) {
            if (hasSeenEnough(entry))
                return true;
        }
        return false;
    }
};

} // namespace

ProcessList &ProcessList::ofSystem()
{
    static ToolHelpSnapshot list;
    return list;
}

} // namespace tarnPlatform
