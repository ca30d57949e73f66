#include "firstLoad.h"

#include "generate.h"
#include "handle.h"
#include "program.h"
#include "references.h"

#include <array>
#include <cstdio>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// --- In the child -----------------------------------------------------------------------------------------------

void print(const std::vector<double>& figures)
{
    for (const double figure : figures)
        std::printf("%.9g\n", figure);
}

void load(const std::string& file)
{
    Handle handle(file);
    const double time = cpuTimeOf([&] { handle.bind(); });
    const double peak = peakMemory();
    print({time, peak, cpuTimeOf([&] { handle.release(); })});
}

time_t modificationTime(const std::string& file)
{
    struct stat status = {};
    require(stat(file.c_str(), &status) == 0, "stat");
    return status.st_mtime;
}

// In seconds, as the library tells a change.
void setModificationTime(const std::string& file, time_t time)
{
    const std::array<timespec, 2> times{{{0, UTIME_OMIT}, {time, 0}}};
    require(utimensat(AT_FDCWD, file.c_str(), times.data(), 0) == 0, "utimensat");
}

// Changes one digit of the file in place, and gives the new one.
char changeOutside(const std::string& name, std::streamoff at)
{
    std::fstream file(name, std::ios::binary | std::ios::in | std::ios::out);
    file.seekg(at);
    const int before = file.get();
    require(before >= '0' && before <= '9', "the digit of the revision");
    const char digit = before == '9' ? '0' : static_cast<char>(before + 1);
    file.seekp(at);
    require(static_cast<bool>(file << digit << std::flush), "a change of the file");
    return digit;
}

void reload(const std::string& file, std::size_t revisionAt)
{
    Handle handle(file);
    handle.bind();
    const time_t before = modificationTime(file);
    const char digit = changeOutside(file, static_cast<std::streamoff>(revisionAt));
    setModificationTime(file, before + 1);
    Result result;
    const double time =
        cpuTimeOf([&] { result = handle.search(suffixDn, LDAP_SCOPE_BASE, anyEntry, revisionAttribute); });
    require(result->child->child->text == std::string(revision) + digit, "a reload that takes in the change");
    print({time, peakMemory()});
}

void lex(const std::string& file, std::size_t expected)
{
    std::size_t lines = 0;
    print({cpuTimeOf([&] { lines = countLdifLines(file); })});
    require(lines == expected, "the number of lines that libldap reads");
}

void loadNothing()
{
    const Handle handle("none");
    print({peakMemory()});
}

}  // namespace

void runChild(const std::vector<std::string>& arguments)
{
    alarm(childSeconds);
    const std::string& work = arguments.at(0);
    if (work == "load")
        load(arguments.at(1));
    else if (work == "reload")
        reload(arguments.at(1), std::stoul(arguments.at(2)));
    else if (work == "lex")
        lex(arguments.at(1), std::stoul(arguments.at(2)));
    else
        loadNothing();
}

// --- In the parent ----------------------------------------------------------------------------------------------

LoadFigures firstLoad(const std::string& file)
{
    const std::vector<double> results = resultsOfChild({childOption, "load", file});
    return results.empty() ? LoadFigures() : LoadFigures{results.at(0), results.at(1), results.at(2)};
}

ReloadFigures firstReload(const std::string& file, std::size_t revisionAt)
{
    const std::vector<double> results = resultsOfChild({childOption, "reload", file, std::to_string(revisionAt)});
    return results.empty() ? ReloadFigures() : ReloadFigures{results.at(0), results.at(1)};
}

double firstLexing(const std::string& file, std::size_t lines)
{
    const std::vector<double> results = resultsOfChild({childOption, "lex", file, std::to_string(lines)});
    if (results.empty())
        return infinite;
    return results.front();
}

double peakWithoutLoad()
{
    return resultsOfChild({childOption, "nothing"}).at(0);
}
