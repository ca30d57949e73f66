// Kills a process that updates a file with a backup: at each of its calls on files, and at random moments. Behind each
// kill the file or the backup holds one of the texts that were ever complete. Ends with 1 if one did not.
#include "faults.h"
#include "support.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned int seed = 20260101;
constexpr unsigned int longestLife = 8000;  // of a process that is killed at random, in microseconds
constexpr int updates = 4;                  // in a round, which ends with the text that it began with

const TempDirectory directory;
const std::string file = directory / "file";
const std::string backup = directory / "backup";
long kills = 0;
long violations = 0;

int update(CFG* cfg, int number)
{
    char port[] = "zeb-slapdPort";
    char text[] = "389";
    text[0] = number == 0 ? '7' : '3';
    char* values[] = {text, nullptr};
    LDAPMod record = {LDAP_MOD_REPLACE, port, {values}};
    LDAPMod* records[] = {&record, nullptr};
    switch (number) {
    case 1:
        return cfg_add_s(cfg, "cn=new, cn=k7", records);
    case 2:
        return cfg_delete_s(cfg, "cn=new, cn=k7");
    default:
        return cfg_modify_s(cfg, "cn=k0", records);
    }
}

CFG* bound()
{
    CFG* const cfg = cfg_init();
    (void)cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file.c_str());
    (void)cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, backup.c_str());
    if (cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE) != 0)
        std::abort();
    return cfg;
}

// All texts of a round; the last one is the first.
std::vector<std::string> completeTexts()
{
    std::string text = "dn: cn=k0\nobjectclass: top\nzeb-slapdPort: 389\n\n";
    for (int number = 1; number < 1000; ++number)
        text += "dn: cn=k" + std::to_string(number) + "\nobjectclass: top\n\n";
    writeText(file, text);
    CFG* const cfg = bound();
    std::vector<std::string> texts;
    for (int number = 0; number < updates; ++number) {
        if (update(cfg, number) != 0)
            std::abort();
        texts.push_back(readText(file));
    }
    cfg_unbind(cfg);
    return texts;
}

// The first text, with a time that the bound handle knows, and no backup.
void prepare(const std::vector<std::string>& texts)
{
    static const auto time = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    writeText(file, texts.back());
    std::filesystem::last_write_time(file, time);
    std::remove(backup.c_str());
}

// A process that updates the file, in so many rounds, under a plan of faults.
pid_t start(CFG* cfg, const FaultPlan& plan, int rounds)
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    armFaults(plan);
    for (int number = 0; number < updates * rounds; ++number)
        (void)update(cfg, number % updates);
    std::_Exit(0);
}

// Waits for its end, and says whether it was killed.
bool wasKilled(pid_t child)
{
    int status = 0;
    (void)::waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

void check(const std::vector<std::string>& texts, const std::string& moment)
{
    ++kills;
    const auto isWhole = [&](const std::string& name) {
        return std::find(texts.begin(), texts.end(), readText(name)) != texts.end();
    };
    if (isWhole(file) || isWhole(backup))
        return;
    ++violations;
    std::printf("killed %s: neither file (%zu bytes) nor backup (%zu bytes) is whole\n", moment.c_str(),
                readText(file).size(), readText(backup).size());
}

}  // namespace

// The number of kills at random moments.
int main(int count, char** arguments)
{
    const long randomKills = count > 1 ? std::strtol(arguments[1], nullptr, 10) : 4000;
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    const std::vector<std::string> texts = completeTexts();
    prepare(texts);
    CFG* const cfg = bound();
    for (const Fault fault : {Fault::killBefore, Fault::killHalf, Fault::killAfter}) {
        for (long call = 1;; ++call) {
            prepare(texts);
            if (!wasKilled(start(cfg, {faultFiles, call, false, fault, 0}, 2)))
                break;
            check(texts, "at call " + std::to_string(call) + " in way " + std::to_string(static_cast<int>(fault)));
        }
    }
    const long chosen = kills;
    std::mt19937 random(seed);
    while (kills < chosen + randomKills) {
        prepare(texts);
        const pid_t child = start(cfg, {}, 1000);
        const auto life = static_cast<unsigned int>(random() % longestLife);
        ::usleep(life);
        (void)::kill(child, SIGKILL);
        if (wasKilled(child))
            check(texts, "after " + std::to_string(life) + " us");
    }
    cfg_unbind(cfg);
    std::printf("%ld kills, %ld of them at a chosen call, %ld violations\n", kills, chosen, violations);
    return violations == 0 && chosen > 0 ? 0 : 1;
}
