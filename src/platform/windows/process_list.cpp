#include "platform/process_list.h"

#include "platform/windows/unique_handle.h"

#include <windows.h>

#include <tlhelp32.h>

namespace tarnPlatform {
namespace {

class ToolHelpSnapshot final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
        if (!snapshot)
            return false;
        PROCESSENTRY32W entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL found = Process32FirstW(snapshot.get(), &entry); found;
             found = Process32NextW(snapshot.get(), &entry)) {
            if (matches(QString::fromWCharArray(entry.szExeFile)))
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
