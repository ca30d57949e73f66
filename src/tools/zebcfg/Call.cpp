#include "Call.h"

#include "Json.h"
#include "Password.h"

#include <cstdlib>
#include <iostream>
#include <utility>

#include <unistd.h>

void report(const Failure& failure, const Telling& telling)
{
    std::cout.flush();
    if (telling.isJson)
        std::cerr << toJson(failure, telling.isVerbose) << '\n';
    else
        std::cerr << "zebcfg: " << failure.line() << '\n' << (telling.isVerbose ? failure.dump : "");
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

std::string Call::fileName() const
{
    if (has("config"))
        return value("config");
    if (const char* const name = getDefaultConfigFilename())
        return name;
    Failure failure(CFG_CONNECT_ERROR,
                    "no configuration file is named with -F, and there is no default: the install "
                    "location is looked for in " ZEBCFG_REGISTRY "/SOFTWARE/ZEB/LDAP/Client/LDAPHome");
    failure.extended = CFG_ERR_CONFIG_FILENAME;
    throw failure;
}

std::string Call::backupName() const
{
    if (has("no-backup"))
        return {};
    return has("backup") ? value("backup") : fileName() + ".bak";
}

const std::optional<Login>& Call::login() const
{
    if (isLoginKnown)
        return loginOnce;
    isLoginKnown = true;
    const int sources = int{has("password")} + int{has("ask-password")} + int{has("password-file")};
    if (sources > 1)
        throw Failure(0, "of -w, -W and -y only one can be used");
    if (has("bind-dn") != (sources == 1))
        throw Failure(0, has("bind-dn") ? "-D needs a password: -W, -y or -w" : "a password needs a login: -D");
    if (!has("bind-dn"))
        return loginOnce;
    if (has("password"))
        warn("the password of -w can be seen by others on this machine; use -W or -y");
    std::string password = value("password");
    if (has("ask-password"))
        password = askPassword("Password for " + value("bind-dn") + ": ");
    else if (has("password-file"))
        password = readPasswordFile(value("password-file"));
    return loginOnce = Login{value("bind-dn"), password};
}

bool Call::hasColor(int descriptor) const
{
    const std::string when = value("color", "auto");
    if (when != "auto")
        return when == "always";
    const char* const no = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return (no == nullptr || *no == '\0') && ::isatty(descriptor) == 1 && terminal != nullptr &&
           std::string(terminal) != "dumb";
}

void Call::say(const std::string& text) const
{
    if (!isQuiet())
        warn(text);
}

void Call::warn(const std::string& text) const
{
    std::cout.flush();
    std::cerr << (isJson() ? noteToJson(text) : "zebcfg: " + text) << '\n';
}
