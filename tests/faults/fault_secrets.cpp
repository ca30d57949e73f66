// Looks for clear passwords in the memory that the library gives back. Prints the number of steps and of violations.
#include "client.h"
#include "faults.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// The same passwords long and short: a short one fits into a string without a block of its own.
struct Passwords {
    const char* secret;
    const char* folded;   // the secret over two lines
    const char* foreign;  // no ASCII
    const char* filter;   // for the foreign one
};

constexpr Passwords all[] = {
    {"a secret of some length", "a secret of \n some length", "a secret of some length \u00e4\u00df",
     "(zeb-slapdAdminPW=a secret of some length \u00e4\u00df)"},
    {"s3cr3t", "s3c\n r3t", "\u00e4\u00df-1", "(zeb-slapdAdminPW=\u00e4\u00df-1)"},
};

constexpr char admin[] = "cn=admin, o=Example";
constexpr char configuration[] = "cn=Configuration";
constexpr char fileStart[] =
    "version: 1\n\ndn: cn=Configuration\nobjectclass: zeb-slapdTop\nzeb-slapdAdminDN: cn=admin, o=Example\n"
    "zeb-slapdAdminPW: ";
const std::string fileEnd = "\n\n# " + std::string(sizeof fileStart, 'x') + '\n';  // as long as what comes before
constexpr char password[] = "zeb-slapdAdminPW";

int bindAs(Client& client, const char* text)
{
    return cfg_bind_s(client.cfg, admin, text, LDAP_AUTH_SIMPLE);
}

// A load of a file that somebody has written with an editor. Nothing here has the text in memory that is released.
int loadText(Client& client, const char* value, const char* login, const char* before = "")
{
    const int file = ::open(client.file, O_WRONLY | O_TRUNC);
    bool isWritten = true;
    for (const char* part : {before, fileStart, value, fileEnd.c_str()})
        isWritten = isWritten && ::write(file, part, std::strlen(part)) == static_cast<ssize_t>(std::strlen(part));
    (void)::close(file);
    return isWritten ? bindAs(client, login) : -1;
}

// A load under a plan of faults.
int loadUnder(const FaultPlan& plan, Client& client, const Passwords& texts, const char* before = "")
{
    armFaults(plan);
    const int code = loadText(client, texts.secret, texts.secret, before);
    (void)disarmFaults();
    return code;
}

constexpr FaultPlan growingFile = {faultStat, 1, true, Fault::half, 0};
constexpr FaultPlan noEnd = {faultRead, 2, true, Fault::error, EIO};

// The buffer is memory from the system.
int loadMuchWithoutEnd(Client& client, const Passwords& texts)
{
    static const std::string before = "# " + std::string(std::size_t{300} << 10, 'x') + "\n\n";
    return loadUnder(noEnd, client, texts, before.c_str());
}

int modify(const Client& client, int operation, const char* text)
{
    return client.change(cfg_modify_s, configuration, operation, password, text);
}

// The result of the search has the clear text, as it should; it is not looked at.
int searchFor(Client& client, const char* filter)
{
    const int code = client.search(configuration, LDAP_SCOPE_BASE, filter);
    (void)watchReleases(nullptr);
    cfg_msgfree(client.found);
    client.found = nullptr;
    return code;
}

struct Step {
    const char* name;
    int code;  // expected
    int (*run)(Client& client, const Passwords& texts);
};

const Step steps[] = {
    {"load", 0, [](auto& s, auto& texts) { return loadText(s, texts.secret, texts.secret); }},
    {"load growing", 0, [](auto& s, auto& texts) { return loadUnder(growingFile, s, texts); }},
    {"load without end", CFG_CONNECT_ERROR, [](auto& s, auto& texts) { return loadUnder(noEnd, s, texts); }},
    {"load much without end", CFG_CONNECT_ERROR, loadMuchWithoutEnd},
    {"load in vain", LDAP_INVALID_DN_SYNTAX,
     [](auto& s, auto& texts) { return loadText(s, texts.secret, texts.secret, "dn: cn\n\n"); }},
    {"load folded", 0, [](auto& s, auto& texts) { return loadText(s, texts.folded, texts.secret); }},
    {"load foreign", 49, [](auto& s, auto& texts) { return loadText(s, texts.foreign, texts.secret); }},
    {"bind foreign", 0, [](auto& s, auto& texts) { return bindAs(s, texts.foreign); }},
    {"bind wrongly", 49, [](auto& s, auto& texts) { return bindAs(s, texts.secret); }},
    {"replace", 0, [](auto& s, auto& texts) { return modify(s, LDAP_MOD_REPLACE, texts.secret); }},
    {"add", 0, [](auto& s, auto& texts) { return modify(s, LDAP_MOD_ADD, texts.foreign); }},
    {"delete", 0, [](auto& s, auto& texts) { return modify(s, LDAP_MOD_DELETE, texts.secret); }},
    {"new entry", 0,
     [](auto& s, auto& texts) { return s.change(cfg_add_s, "cn=new", LDAP_MOD_ADD, password, texts.secret); }},
    {"search", 0, [](auto& s, auto& texts) { return searchFor(s, texts.filter); }},
    {"write", 0, [](auto& s, auto&) { return cfg_flush_s(s.cfg); }},
};

// Gives how many steps went wrong.
int runSteps(const Passwords& texts)
{
    const TempDirectory directory;
    const std::string file = directory / "zebslapd.conf";
    writeText(file, "version: 1\n");
    Client client(file.c_str());
    int violations = client.open() == 0 ? 0 : 1;
    for (const Step& step : steps) {
        long releases = -watchReleases(texts.secret);
        const int code = step.run(client, texts);
        releases += watchReleases(nullptr);
        if (code == step.code && releases == 0)
            continue;
        ++violations;
        std::printf("%s of \"%s\": code %d, %ld blocks with it\n", step.name, texts.secret, code, releases);
    }
    return violations;
}

}  // namespace

int main()
{
    int violations = 0;
    for (const Passwords& texts : all)
        violations += runSteps(texts);
    std::printf("%zu steps, %d violations\n", std::size(all) * std::size(steps), violations);
    return violations == 0 ? 0 : 1;
}
