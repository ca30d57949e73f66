// Runs the program of the system below wine that has the name of this one, such as sed, with the same arguments.
// wine starts such a program but does not wait for it, and hands it files but no pipes: its status comes in a file.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <windows.h>

// The name of a file as the system has it: wine keeps the roots of its drives beside its settings.
static std::string unixForm(const std::string& word)
{
    if (word.compare(0, 3, std::string(word, 0, 1) + ":\\") != 0)
        return word;
    std::string rest = word.substr(1);
    std::replace(rest.begin(), rest.end(), '\\', '/');
    return std::getenv("WINEPREFIX") + std::string("/dosdevices/") + static_cast<char>(std::tolower(word[0])) + rest;
}

int main(int argc, char** argv)
{
    const auto status = std::filesystem::temp_directory_path() / ("unix" + std::to_string(std::random_device()()));
    std::string line = R"(sh -c "\"$@\" >/dev/null; echo $?" sh )" + std::filesystem::path(argv[0]).stem().string();
    for (int i = 1; i < argc; ++i)
        line += " \"" + unixForm(argv[i]) + '"';
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    STARTUPINFOA setup = {};
    setup.cb = sizeof setup;
    setup.dwFlags = STARTF_USESTDHANDLES;
    setup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    setup.hStdOutput = CreateFileW(status.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_NEW, 0, nullptr);
    PROCESS_INFORMATION process = {};
    if (CreateProcessA("Z:\\bin\\sh", line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &setup, &process) ==
        FALSE)
        return 126;
    CloseHandle(setup.hStdOutput);
    int code = 0;
    while (!(std::ifstream(status) >> code))
        Sleep(10);
    std::filesystem::remove(status);
    return code;
}
