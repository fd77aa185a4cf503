// Stands in for the system's tool sc.exe where a test wants to see how it is called, or to say what it
// answers: adds its own command line to sc_calls.txt beside it and prints sc_answer.txt, if there is one. The
// recovery of a service, which Wine's own tool does not know, it sets as Windows keeps it: in the registry.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::wstring>;

bool setValue(
    const std::wstring &service, const wchar_t *name, DWORD type, const void *bytes, std::size_t size)
{
    const std::wstring key = L"System\\CurrentControlSet\\Services\\" + service;
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, bytes, static_cast<DWORD>(size))
        == ERROR_SUCCESS;
}

std::wstring after(const Words &words, const wchar_t *option)
{
    const auto found = std::find(words.begin(), words.end(), option);
    return found == words.end() || found + 1 == words.end() ? std::wstring() : *(found + 1);
}

// As in "restart/5000/restart/60000": a delay in milliseconds after each action.
bool setActions(const std::wstring &service, const std::wstring &resetSeconds, std::wstring actions)
{
    constexpr std::uint32_t restart = 1;
    constexpr std::uint32_t offsetOfActions = 0x14;
    std::replace(actions.begin(), actions.end(), L'/', L' ');
    std::wistringstream list(actions);
    std::vector<std::uint32_t> value {
        static_cast<std::uint32_t>(std::stoul(resetSeconds)), 0, 0, 0, offsetOfActions};
    std::wstring action;
    for (std::uint32_t delayMs = 0; list >> action >> delayMs; ++value[3])
        value.insert(value.end(), {action == L"restart" ? restart : 0, delayMs});
    return setValue(service, L"FailureActions", REG_BINARY, value.data(), value.size() * sizeof value[0]);
}

bool setFlag(const std::wstring &service, const std::wstring &number)
{
    const DWORD flag = std::stoul(number);
    return setValue(service, L"FailureActionsOnNonCrashFailures", REG_DWORD, &flag, sizeof flag);
}

// Other requests are noted only.
bool obey(const Words &words)
{
    if (words.size() > 2 && words[1] == L"failure")
        return setActions(words[2], after(words, L"reset="), after(words, L"actions="));
    if (words.size() > 3 && words[1] == L"failureflag")
        return setFlag(words[2], words[3]);
    return true;
}

} // namespace

int wmain(int count, wchar_t **words)
{
    std::wstring program(32768, L'\0'); // characters, the longest path
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    const std::filesystem::path folder = std::filesystem::path(program).parent_path();

    std::string line;
    for (const wchar_t *at = GetCommandLineW(); *at != L'\0'; ++at)
        line.push_back(*at < 0x80 ? static_cast<char>(*at) : '?');
    std::ofstream(folder / "sc_calls.txt", std::ios::app | std::ios::binary) << line << '\n';

    std::ifstream answer(folder / "sc_answer.txt", std::ios::binary);
    for (std::string text; std::getline(answer, text);)
        std::puts(text.c_str());
    return obey(Words(words, words + count)) ? 0 : 1;
}
