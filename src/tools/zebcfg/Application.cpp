#include "Application.h"

#include "base/Failure.h"
#include "base/Locale.h"
#include "base/Masking.h"
#include "cli/CommandLine.h"
#include "terminal/PrivateProcess.h"
#include "terminal/Progress.h"
#include "terminal/Signals.h"
#include "terminal/StandardStreams.h"

#include <iostream>
#include <new>
#include <string>
#include <vector>

namespace {

int runCommand(int argc, char** argv, Messages& messages)
{
    std::vector<std::string> words = localArguments(argc, argv);
    std::vector<char*> pointers;
    pointers.reserve(words.size());
    for (std::string& word : words)
        pointers.push_back(word.data());
    const Call call = readCommandLine(static_cast<int>(pointers.size()), pointers.data(), messages);
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
    useLocale();
    prepareStandardStreams();
    handleSignals();
    hideMemory();
    try {
        return runReporting(argc, argv);
    } catch (const std::bad_alloc&) {
        writeError("zebcfg: there is not enough memory\n");  // for which no more of it is asked
        return 1;
    }
}
