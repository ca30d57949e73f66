#include "cli/Call.h"

#include "base/Failure.h"
#include "base/Locale.h"
#include "base/Masking.h"
#include "files/FileSystem.h"
#include "files/Input.h"
#include "terminal/Password.h"
#include "terminal/StandardStreams.h"

#include <charconv>
#include <utility>

#include <zebldapcfg.h>

int wholeNumber(const std::string& text, const std::string& refusal)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0)
        throw Failure(0, refusal);
    return number;
}

std::string unnamedFile()
{
    const std::string variable = environmentValue("ZEBCFG_FILE");
    return !variable.empty() ? variable : defaultFileName();
}

Call::Call(const Command* chosen, std::map<std::string, std::vector<std::string>> given,
           std::vector<std::string> operandsGiven)
    : chosenCommand(chosen), options(std::move(given)), words(std::move(operandsGiven))
{}

std::string Call::operand(std::size_t place) const
{
    return place < words.size() ? words[place] : std::string();
}

std::size_t Call::count(const std::string& key) const
{
    const auto found = options.find(key);
    return found != options.end() ? found->second.size() : 0;
}

std::string Call::value(const std::string& key, const std::string& otherwise) const
{
    const auto found = options.find(key);
    return found != options.end() && !found->second.empty() ? found->second.back() : otherwise;
}

int Call::number(const std::string& key, int otherwise, const char* what) const
{
    return has(key) ? wholeNumber(value(key), "--" + key + " takes a whole number of " + what) : otherwise;
}

int Call::generations() const
{
    constexpr int most = 99;
    const std::string variable = environmentValue("ZEBCFG_BACKUPS");
    const std::string text = value("keep", variable.empty() ? "1" : variable);
    const std::string refusal = std::string(has("keep") ? "--keep" : "ZEBCFG_BACKUPS") +
                                " takes a number of backups from 1 to 99; --no-backup keeps none";
    const int count = wholeNumber(text, refusal);
    if (count < 1 || count > most)
        throw Failure(0, refusal);
    return count;
}

std::string Call::fileName() const
{
    if (has("config"))
        return value("config");  // An empty name too: a script that has lost it is not to change another file.
    std::string name = unnamedFile();
    if (!name.empty())
        return name;
    Failure failure(CFG_CONNECT_ERROR,
                    std::string("no configuration file is named with -F or ZEBCFG_FILE, and there is no default: ") +
                        "the install location is looked for in " + installPlace);
    failure.extended = CFG_ERR_CONFIG_FILENAME;
    throw failure;
}

bool Call::mayAsk() const
{
    return !has("yes") && !has("dry-run") && isTerminal(inputStream) && isTerminal(errorStream);
}

std::string Call::backupNameFor(const std::string& file) const
{
    if (has("no-backup"))
        return {};
    if (has("backup") && value("backup").empty())
        throw Failure(0, "-B takes the name of a file; --no-backup keeps none");
    return value("backup", file + ".bak");
}

std::string Call::backupName() const
{
    return backupNameFor(fileName());
}

Target Call::targetFor(const std::string& file) const
{
    Target target;
    target.file = file;
    target.backup = backupNameFor(file);
    target.generations = generations();
    target.isDryRun = has("dry-run");
    target.isForced = has("force");
    target.hasColor = hasColor(outputStream);
    target.wait = std::chrono::seconds(number("wait", 60, "seconds"));
    target.messages = messages();
    return target;
}

Target Call::target() const
{
    Target target = targetFor(fileName());
    target.login = login();
    return target;
}

std::optional<std::string> Call::givenPassword() const
{
    if (int{has("password")} + int{has("ask-password")} + int{has("password-file")} > 1)
        throw Failure(0, "only one of -w, -W and -y can be used");
    if (has("password"))
        messages().warn("the password of -w can be seen by others on this machine; use -W or -y");
    if (has("password"))
        return value("password");
    if (has("password-file"))
        return readPasswordFile(value("password-file"));
    if (has("ask-password"))
        return askPassword("Password for " + shownDn(value("bind-dn")) + ": ");
    return std::nullopt;
}

std::optional<Login> Call::login() const
{
    const bool hasSource = has("password") || has("ask-password") || has("password-file");
    if (has("bind-dn") != hasSource)
        throw Failure(0, has("bind-dn") ? "-D needs a password: -W, -y or -w" : "a password needs a login: -D");
    if (!has("bind-dn"))
        return std::nullopt;
    return Login{value("bind-dn"), givenPassword().value_or("")};
}

bool Call::hasColor(int descriptor) const
{
    const std::string when = value("color", "auto");
    const bool isWanted = when == "always" || (when == "auto" && environmentValue("NO_COLOR").empty());
    return isWanted && (showsColor(descriptor) || when == "always");
}
