// Kills a process that updates a file with a backup: at each of its calls on files, and at random moments. Behind each
// kill the file or the backup holds one of the texts that were ever complete. Ends with 1 if one did not.
#include "client.h"
#include "faults.h"

#include <algorithm>
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
std::vector<std::string> texts;  // all of a round; the last one is the first
long kills = 0;
long violations = 0;

int update(const Client& client, int number)
{
    if (number == 1)
        return cfg_add_s(client.cfg, "cn=new, cn=k7", nullptr);
    if (number == 2)
        return cfg_delete_s(client.cfg, "cn=new, cn=k7");
    return client.change(cfg_modify_s, "cn=k0", LDAP_MOD_REPLACE, "zeb-slapdPort", number == 0 ? "789" : "389");
}

// The first text, with a time that the bound handle knows, and no backup.
void prepare()
{
    writeText(file, texts.back());
    setTime(file, 1000);
    std::remove(backup.c_str());
}

// Starts a process that updates the file under a plan of faults, kills it after some microseconds unless that is 0, and
// says whether it was killed, by whomever.
bool killsWriter(const Client& client, const FaultPlan& plan, unsigned int life)
{
    prepare();
    const pid_t child = ::fork();
    if (child == 0) {
        armFaults(plan);
        for (int number = 0; life != 0 || number < 2 * updates; ++number)
            (void)update(client, number % updates);
        std::_Exit(0);
    }
    if (life != 0) {
        (void)::usleep(life);
        (void)::kill(child, SIGKILL);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

bool isWhole(const std::string& name)
{
    return std::find(texts.begin(), texts.end(), readText(name)) != texts.end();
}

void check(const char* unit, long moment)
{
    ++kills;
    if (isWhole(file) || isWhole(backup))
        return;
    ++violations;
    std::printf("killed at %s %ld: neither file nor backup is whole\n", unit, moment);
}

}  // namespace

// The argument: the number of kills at random moments.
int main(int count, char** arguments)
{
    const long randomKills = count > 1 ? std::strtol(arguments[1], nullptr, 10) : 4000;
    std::printf("seed %u\n", seed);
    std::setbuf(stdout, nullptr);
    std::string text = "dn: cn=k0\nzeb-slapdPort: 389\n\n";
    for (int number = 1; number < 1000; ++number)
        text += "dn: cn=k" + std::to_string(number) + "\nobjectclass: top\n\n";
    texts = {text};
    prepare();
    Client client(file.c_str(), backup.c_str());
    bool isReady = client.open() == 0;
    for (int number = 0; number < updates; ++number) {
        isReady = update(client, number) == 0 && isReady;
        texts.push_back(readText(file));
    }
    texts.erase(texts.begin());
    prepare();
    isReady = client.search("", LDAP_SCOPE_BASE, "") == 0 && isReady;
    for (long call = 1; killsWriter(client, {faultFiles, call, false, Fault::kill, 0}, 0); ++call)
        check("call", call);
    const long chosen = kills;
    std::mt19937 random(seed);
    while (kills < chosen + randomKills) {
        const auto life = static_cast<unsigned int>(1 + random() % longestLife);
        if (killsWriter(client, {}, life))
            check("microsecond", life);
    }
    std::printf("%ld kills, %ld of them at a chosen call, %ld violations\n", kills, chosen, violations);
    return isReady && violations == 0 && chosen > 0 ? 0 : 1;
}
