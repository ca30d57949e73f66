#include "update/Update.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "check/Place.h"
#include "files/Descriptor.h"
#include "files/Replacement.h"
#include "formats/ConfigText.h"
#include "formats/Diff.h"
#include "formats/Json.h"
#include "library/Outline.h"
#include "library/ReadBack.h"
#include "terminal/Progress.h"
#include "update/Workplace.h"

#include <algorithm>
#include <optional>

namespace {

// The first value of one attribute that another does not have in its place, as it may be shown.
std::string firstMissing(const Attribute& wanted, const Attribute& found)
{
    const auto [value, other] =
        std::mismatch(wanted.values.begin(), wanted.values.end(), found.values.begin(), found.values.end());
    return value != wanted.values.end() ? shownValue(wanted.name, *value) : "";
}

// Names the first entry that differs, and its first attribute that does.
Failure differenceOf(const std::vector<Entry>& wanted, const std::vector<Entry>& found)
{
    const auto [left, right] = std::mismatch(wanted.begin(), wanted.end(), found.begin(), found.end());
    const Entry none;
    const Entry& one = left != wanted.end() ? *left : none;
    const Entry& other = right != found.end() ? *right : none;
    Failure failure(LDAP_INVALID_SYNTAX, "would be read back from the file as a different one; nothing is changed");
    failure.entry = one.dn.empty() ? other.dn : one.dn;
    const auto [attribute, end] =
        std::mismatch(one.attributes.begin(), one.attributes.end(), other.attributes.begin(), other.attributes.end());
    if (one.dn == other.dn && attribute != one.attributes.end()) {
        failure.attribute = attribute->name;
        failure.value = firstMissing(*attribute, end != other.attributes.end() ? *end : Attribute());
    }
    failure.text =
        (failure.attribute.empty() ? "the entry " : "a value of ") + shownDn(failure.entry) + ' ' + failure.text;
    return failure;
}

// Compares all entries with those that the changes have made. Those without an objectclass are looked for by their
// other attributes.
std::optional<Failure> readBackFailure(Workplace& place, const Changes& changes)
{
    const Session& made = changes.session();
    const ReadBack again(place.result(), place.copy(), place.file().shownName());
    if (again.isPlainlySame(made))
        return std::nullopt;
    auto names = namesIn(place.result());
    names.insert(names.end(), changes.names().begin(), changes.names().end());
    const std::size_t count = outlineOf(made).size();
    const auto wanted = made.entriesWith(names, count);
    const auto found = again.session().entriesWith(names, count);
    if (again.isSame(made, wanted, found))
        return std::nullopt;
    place.copy().requireRoomFor(place.file().text().size());  // A library that finds no room reports nothing.
    return differenceOf(wanted, found);
}

// The library moves such lines as soon as it loads the file.
void reportQuarantined(const Messages& messages, const Workplace& place, const Changes& changes)
{
    std::size_t count = 0;
    for (const Entry& entry :
         changes.session().search("", LDAP_SCOPE_SUBTREE, std::string(invalidLine) + "=*", {invalidLine}))
        count += entry.attributes.front().values.size();
    if (count == 0)
        return;
    for (const ConfigLine& line : linesOf(place.file().text()))
        count -= isSameName(line.name, invalidLine) && count > 0 ? 1 : 0;
    if (count > 0)
        messages.say("lines that the server does not accept are kept as " + std::string(invalidLine) +
                     "; zebcfg check reports them");
}

// A load drops what follows in the line, and the write would lose it.
void requireNoNul(const LiveFile& file)
{
    const auto lines = linesWithNul(file.text());
    if (lines.empty())
        return;
    Failure failure(LDAP_INVALID_SYNTAX, "there is a NUL byte in the line, and a write would drop the rest of it",
                    file.shownName());
    failure.fileLine = lines.front();
    throw failure;
}

}  // namespace

void update(const Target& target, const std::function<void(Changes& changes)>& body,
            const std::function<void(Failure& failure)>& addInputPlace)
{
    const auto place = openWorkplace(target);
    place->file().requireUsable(target.backup);
    requireNoNul(place->file());
    Progress progress("Loading");
    try {
        Changes changes(place->copy(), place->file().shownName(), target.login, target.isForced);
        reportQuarantined(target.messages, *place, changes);
        progress.turnTo("Changing");
        body(changes);
        progress.turnTo("Verifying");
        const bool isChanged = changes.write();
        for (const std::string& note : changes.notes())
            target.messages.say(note);
        const bool ignoresForm = target.isState || place->file().isMissing();
        if (ignoresForm && !isChanged) {
            overwriteFile(place->copy().name(), place->file().text());
        } else if (auto difference = readBackFailure(*place, changes)) {
            addInputPlace(*difference);
            throw *difference;
        }
    } catch (Failure& failure) {
        addPlace(failure, place->file().text(), place->file().shownName());
        throw;
    }
    progress.turnTo("Writing");
    place->finish();
}

void replaceText(const Target& target, const std::function<std::string(const LiveFile& file)>& newText)
{
    const auto place = openWorkplace(target);
    overwriteFile(place->copy().name(), newText(place->file()));
    place->finish();
}

void requireLogin(const Target& target, const std::string& text, const std::string& shownName)
{
    if (!target.login)
        return;
    const MemoryFile copy(text);
    const Session session(copy.name(), shownName, target.login);
}

void putInPlace(const Target& target, const LiveFile& other)
{
    if (target.isDryRun)
        return showDiff(target, "", other.text(), target.file);
    createLike(other, target.file, handlingOf(target));
}
