// Stands in for the system's tool sc.exe where a test wants to see how it is called, or to say what it
// answers: adds its own command line to sc_calls.txt beside it and prints sc_answer.txt, if there is one.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

int main()
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
    return 0;
}
