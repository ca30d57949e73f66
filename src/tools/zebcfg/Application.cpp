#include "Application.h"

#include "base/Failure.h"
#include "base/Masking.h"
#include "cli/CommandLine.h"
#include "terminal/PrivateProcess.h"
#include "terminal/Progress.h"
#include "terminal/Signals.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include <fcntl.h>
#include <unistd.h>

namespace {

// A file in UTF-8 cannot be read in the plain locale, which cron and init scripts run programs in.
void useUtf8InPlainLocale()
{
    const char* const name = std::setlocale(LC_CTYPE, "");
    if (name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0)
        (void)::setenv("LC_ALL", "C.UTF-8", 1);
    (void)std::setlocale(LC_ALL, "");
}

// A stream that is closed would give its number to the next file that is opened, and messages would go into that file.
// What stands in for it can be read only, so that writing fails as before.
void occupyStandardStreams()
{
    int file = 0;
    do
        file = ::open("/dev/null", O_RDONLY);
    while (file >= 0 && file <= STDERR_FILENO);
    if (file >= 0)
        ::close(file);
}

int runCommand(int argc, char** argv, Messages& messages)
{
    const Call call = readCommandLine(argc, argv, messages);
    showPasswords(call.has("show-passwords"));
    showProgress(!call.isQuiet() && !call.isJson());
    const int status = call.command() != nullptr ? call.command()->run(call) : 0;
    if (!std::cout.flush())
        throw systemFailure(0, "cannot write the output");
    return status;
}

// The exit status. Throws std::bad_alloc.
int runReporting(int argc, char** argv)
{
    Messages messages;
    try {
        return runCommand(argc, argv, messages);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const Failure& failure) {
        messages.report(failure);
        return failure.exitStatus();
    } catch (const std::exception& other) {
        const Failure failure(0, other.what());
        messages.report(failure);
        return failure.exitStatus();
    }
}

}  // namespace

int runApplication(int argc, char** argv)
{
    occupyStandardStreams();
    useUtf8InPlainLocale();
    handleSignals();
    hideMemory();
    try {
        return runReporting(argc, argv);
    } catch (const std::bad_alloc&) {
        constexpr char message[] = "zebcfg: there is not enough memory\n";  // for which no more of it is asked
        (void)!::write(STDERR_FILENO, message, sizeof message - 1);
        return 1;
    }
}
