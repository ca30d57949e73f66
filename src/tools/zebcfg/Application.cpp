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

}  // namespace

int runApplication(int argc, char** argv)
{
    occupyStandardStreams();
    useUtf8InPlainLocale();
    handleSignals();
    hideMemory();
    Messages messages;
    Failure failure;
    try {
        return runCommand(argc, argv, messages);
    } catch (const Failure& caught) {
        failure = caught;
    } catch (const std::exception& caught) {
        failure = Failure(0, caught.what());
    }
    messages.report(failure);
    return failure.exitStatus();
}
