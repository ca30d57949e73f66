#include "Application.h"

#include "CommandLine.h"
#include "Failure.h"
#include "Json.h"
#include "Signals.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

// A file in UTF-8 cannot be read in the plain locale, which cron and init scripts run programs in.
void useUtf8InPlainLocale()
{
    const char* const name = std::setlocale(LC_CTYPE, "");
    if (name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0)
        (void)::setenv("LC_ALL", "C.UTF-8", 1);
    (void)std::setlocale(LC_ALL, "");
}

bool isGiven(int argc, char** argv, const char* shortName, const char* longName)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], shortName) == 0 || std::strcmp(argv[i], longName) == 0)
            return true;
    }
    return false;
}

void report(const Failure& failure, bool isJson, bool isVerbose)
{
    std::cout.flush();
    if (isJson)
        std::cerr << toJson(failure, isVerbose) << '\n';
    else
        std::cerr << "zebcfg: " << failure.line() << '\n' << (isVerbose ? failure.dump : "");
}

int runCommand(int argc, char** argv)
{
    const Call call = readCommandLine(argc, argv);
    if (call.command() == nullptr)
        return 0;
    showPasswords(call.has("show-passwords"));
    const int status = call.command()->run(call);
    if (!std::cout.flush())
        throw systemFailure(0, "cannot write the output");
    return status;
}

}  // namespace

int runApplication(int argc, char** argv)
{
    useUtf8InPlainLocale();
    handleSignals();
    Failure failure;
    try {
        return runCommand(argc, argv);
    } catch (const Failure& caught) {
        failure = caught;
    } catch (const std::exception& caught) {
        failure = Failure(0, caught.what());
    }
    report(failure, isGiven(argc, argv, "-j", "--json"), isGiven(argc, argv, "-v", "--verbose"));
    return failure.exitStatus();
}
