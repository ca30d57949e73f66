#include "formats/Diff.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "files/Backup.h"
#include "files/Input.h"
#include "files/LiveFile.h"
#include "files/MemoryFile.h"
#include "formats/ConfigText.h"
#include "formats/Json.h"
#include "library/Outline.h"
#include "library/Session.h"
#include "terminal/Progress.h"
#include "terminal/StandardStreams.h"
#include "update/Reading.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <optional>
#include <set>
#include <utility>

namespace {

// All of them, also those without attributes, which no search finds.
std::vector<Entry> entriesOf(const Session& session, const std::string& text)
{
    const Progress progress("Comparing");
    const auto nodes = outlineOf(session);
    std::vector<Entry> entries = session.entriesWith(namesIn(text), nodes.size());
    std::set<std::string> found;
    for (const Entry& entry : entries)
        found.insert(lowerCase(entry.dn));
    for (const Node& node : nodes) {
        if (found.insert(lowerCase(node.dn)).second)
            entries.push_back({node.dn, {}});
    }
    return entries;
}

// One side of the comparison.
struct Side {
    Side(const std::string& text, std::string shown, const std::optional<Login>& login = std::nullopt)
        : name(std::move(shown)), copy(text), session(loadedCopy(copy, name, login)), entries(entriesOf(session, text))
    {}

    const std::string name;
    const MemoryFile copy;
    const Session session;
    const std::vector<Entry> entries;
};

// A number stands for a backup.
Side sideOf(const Call& call, const std::string& word)
{
    const bool isNumber = std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    if (!isNumber || word.empty())
        return {readInput(word), shownInput(word)};
    const std::string backup = call.backupName();
    const int number = wholeNumber(word, "there are not that many backups");
    if (backup.empty() || number < 1)
        throw Failure(0, backup.empty() ? "there is no backup under --no-backup" : "backups are numbered from 1");
    const std::string name = generationName(backup, number);
    return {LiveFile(name).text(), name};
}

Side liveSide(const Call& call)
{
    const Target target = call.target();
    return {LiveFile(target.file).text(), target.file, target.login};
}

}  // namespace

int runDiff(const Call& call)
{
    const Side before = sideOf(call, call.operands().empty() ? "1" : call.operand(0));
    const Side after = call.operands().size() > 1 ? sideOf(call, call.operand(1)) : liveSide(call);
    const std::string diff = entryDiff({before.name, before.entries}, {after.name, after.entries},
                                       call.hasColor(outputStream) && !call.isJson());
    std::cout << (call.isJson() ? diffToJson(diff) + '\n' : diff);
    return diff.empty() ? 0 : 1;
}
