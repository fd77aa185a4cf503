// Redirects calls of the program that has loaded this library, by changing its table of imports.
#include "simulator/windows_devices/detours.h"

#include <windows.h>

#include <cstring>

namespace {

using namespace tarnSimulator;

template <typename Type> Type *at(BYTE *base, ULONGLONG offset)
{
    return reinterpret_cast<Type *>(base + offset);
}

void detour(ULONGLONG *entry, const char *function)
{
    for (const auto &rows : {sessionDetours(), serviceDetours(), consoleDetours()}) {
        for (const Detour &row : rows) {
            if (std::strcmp(row.function, function) != 0)
                continue;
            DWORD before = 0;
            VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &before);
            *entry = reinterpret_cast<ULONGLONG>(row.replacement);
            VirtualProtect(entry, sizeof *entry, before, &before);
        }
    }
}

// Only calls of the program itself are redirected; its libraries, and this one, keep calling the system.
void detourImportsOfProgram()
{
    auto *base = reinterpret_cast<BYTE *>(GetModuleHandleW(nullptr));
    const auto *dos = at<IMAGE_DOS_HEADER>(base, 0);
    const auto *headers = at<IMAGE_NT_HEADERS>(base, static_cast<ULONGLONG>(dos->e_lfanew));
    const auto &imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0)
        return;
    for (auto *library = at<IMAGE_IMPORT_DESCRIPTOR>(base, imports.VirtualAddress); library->FirstThunk != 0;
         ++library) {
        const auto *names = at<IMAGE_THUNK_DATA>(base, library->OriginalFirstThunk);
        auto *entries = at<IMAGE_THUNK_DATA>(base, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++entries) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            detour(&entries->u1.Function, at<IMAGE_IMPORT_BY_NAME>(base, names->u1.AddressOfData)->Name);
        }
    }
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        detourImportsOfProgram();
    return TRUE;
}
