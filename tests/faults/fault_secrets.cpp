// Looks for clear passwords in the memory that the library gives back. Prints the number of steps and of violations.
#include "faults.h"
#include "session.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char secret[] = "a secret of some length";
constexpr char foreign[] = "a secret of some length \u00e4\u00df";  // no ASCII
constexpr char admin[] = "cn=admin, o=Example";
constexpr char configuration[] = "cn=Configuration";
constexpr char fileStart[] =
    "version: 1\n\ndn: cn=Configuration\nobjectclass: zeb-slapdTop\nzeb-slapdAdminDN: cn=admin, o=Example\n"
    "zeb-slapdAdminPW: ";
constexpr char password[] = "zeb-slapdAdminPW";

int bindAs(Session& session, const char* text)
{
    return cfg_bind_s(session.cfg, admin, text, LDAP_AUTH_SIMPLE);
}

// A load of a file that somebody has written with an editor. Nothing here has the text in memory that is released.
int loadText(Session& session, const char* value)
{
    const int file = ::open(session.file, O_WRONLY | O_TRUNC);
    bool isWritten = true;
    for (const char* part : {fileStart, value, "\n\n"})
        isWritten = isWritten && ::write(file, part, std::strlen(part)) > 0;
    (void)::close(file);
    return isWritten ? bindAs(session, secret) : -1;
}

int modify(const Session& session, int operation, const char* text)
{
    return session.change(cfg_modify_s, configuration, operation, password, text);
}

// The result of the search has the clear text, as it should; it is not looked at.
int searchFor(Session& session, const char* filter)
{
    const int code = session.search(configuration, LDAP_SCOPE_BASE, filter);
    (void)watchReleases(nullptr);
    cfg_msgfree(session.found);
    session.found = nullptr;
    return code;
}

struct Step {
    const char* name;
    int code;  // expected
    int (*run)(Session& session);
};

const Step steps[] = {
    {"load", 0, [](Session& session) { return loadText(session, secret); }},
    {"load folded", 0, [](Session& session) { return loadText(session, "a secret of \n some length"); }},
    {"load foreign", 49, [](Session& session) { return loadText(session, foreign); }},
    {"bind foreign", 0, [](Session& session) { return bindAs(session, foreign); }},
    {"bind wrongly", 49, [](Session& session) { return bindAs(session, secret); }},
    {"replace", 0, [](Session& session) { return modify(session, LDAP_MOD_REPLACE, secret); }},
    {"add", 0, [](Session& session) { return modify(session, LDAP_MOD_ADD, foreign); }},
    {"delete", 0, [](Session& session) { return modify(session, LDAP_MOD_DELETE, secret); }},
    {"new entry", 0,
     [](Session& session) { return session.change(cfg_add_s, "cn=new", LDAP_MOD_ADD, password, secret); }},
    {"search", 0,
     [](Session& session) { return searchFor(session, "(zeb-slapdAdminPW=a secret of some length \u00e4\u00df)"); }},
    {"write", 0, [](Session& session) { return cfg_flush_s(session.cfg); }},
};

}  // namespace

int main()
{
    const ScopedLocale utf8;
    const TempDirectory directory;
    const std::string file = directory / "zebslapd.conf";
    writeText(file, "version: 1\n");
    Session session(file.c_str());
    int violations = session.open() == 0 ? 0 : 1;
    for (const Step& step : steps) {
        const long before = watchReleases(secret);
        const int code = step.run(session);
        const long releases = watchReleases(nullptr) - before;
        if (code == step.code && releases == 0)
            continue;
        ++violations;
        std::printf("%s: code %d, %ld blocks with the secret\n", step.name, code, releases);
    }
    std::printf("%zu steps, %d violations\n", std::size(steps), violations);
    return violations == 0 ? 0 : 1;
}
