#include "Update.h"

#include "Attributes.h"
#include "ConfigText.h"
#include "Diff.h"
#include "Failure.h"
#include "Json.h"
#include "LiveFile.h"
#include "Outline.h"
#include "PrivateFile.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include <unistd.h>

namespace {

enum class Damage { refused, allowed };

// The copy that a command works on: beside the file, or in memory where nothing is to be installed.
class Workplace {
public:
    Workplace(const Call& wanted, Damage damage) : call(wanted)
    {
        if (!call.isDryRun())
            replacement = std::make_unique<Replacement>(call.fileName(), call.backupName());
        else
            live = std::make_unique<LiveFile>(call.fileName());
        if (damage == Damage::refused)
            file().requireUsable(call.backupName());
        if (call.isDryRun())
            memory = std::make_unique<MemoryFile>(file().text());
    }

    const LiveFile& file() const { return replacement ? replacement->live() : *live; }
    std::string name() const { return replacement ? replacement->copy().openName() : memory->name(); }

    // Shows the change, or makes it. A text that is the same as before leaves the file alone.
    void finish()
    {
        const std::string after = readFile(name(), file().shownName());
        if (call.isDryRun())
            showDiff(call, file().text(), after, file().shownName());
        else if (after != file().text())
            replacement->install();
        if (call.isVerbose() && !call.isDryRun())
            call.say(after == file().text() ? file().shownName() + " is as it was"
                                            : file().shownName() + " is replaced" + tellBackup());
    }

    // A library that finds no room tells nothing: it is asked for here.
    void requireRoom() const
    {
        if (replacement)
            replacement->copy().requireRoomFor(file().text().size());
    }

private:
    std::string tellBackup() const
    {
        return call.backupName().empty() ? "" : ", and " + call.backupName() + " keeps the old text";
    }

    const Call& call;
    std::unique_ptr<Replacement> replacement;
    std::unique_ptr<LiveFile> live;
    std::unique_ptr<MemoryFile> memory;
};

// Names the first entry that differs, and its first attribute that does.
Failure differenceOf(const std::vector<Entry>& wanted, const std::vector<Entry>& found)
{
    const auto [left, right] = std::mismatch(wanted.begin(), wanted.end(), found.begin(), found.end());
    const Entry none;
    const Entry& one = left != wanted.end() ? *left : none;
    const Entry& other = right != found.end() ? *right : none;
    Failure failure(LDAP_INVALID_SYNTAX, "would be read back from the file as another one; nothing is changed");
    failure.entry = one.dn.empty() ? other.dn : one.dn;
    const auto [attribute, end] =
        std::mismatch(one.attributes.begin(), one.attributes.end(), other.attributes.begin(), other.attributes.end());
    if (one.dn == other.dn && attribute != one.attributes.end())
        failure.attribute = attribute->name;
    failure.text = (failure.attribute.empty() ? "the entry " + failure.entry : "a value") + ' ' + failure.text;
    return failure;
}

// Loads the new text as every program will, and compares all entries with those that the changes have made.
void requireReadBack(const Workplace& place, const Changes& changes)
{
    const std::string text = readFile(place.name(), place.file().shownName());
    std::vector<std::string> names = changes.names();
    for (const ConfigLine& line : linesOf(text))
        names.push_back(line.name);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    names.erase(std::remove(names.begin(), names.end(), ""), names.end());

    const MemoryFile copy(text);
    const Session again(copy.name(), place.file().shownName());
    const std::string outline = changes.session().outline();
    const std::size_t count = outlineOf(changes.session()).size();
    const auto wanted = changes.session().entriesWith(names, count);
    const auto found = again.entriesWith(names, count);
    if (wanted == found && outline == again.outline() && readFile(copy.name(), place.file().shownName()) == text)
        return;
    place.requireRoom();
    throw differenceOf(wanted, found);
}

// The library moves such lines as soon as it loads the file.
void tellQuarantined(const Call& call, const Workplace& place, const Changes& changes)
{
    std::size_t count = 0;
    for (const Entry& entry :
         changes.session().search("", LDAP_SCOPE_SUBTREE, std::string(invalidLine) + "=*", {invalidLine}))
        count += entry.attributes.front().values.size();
    for (const ConfigLine& line : linesOf(place.file().text()))
        count -= isSameName(line.name, invalidLine) && count > 0 ? 1 : 0;
    if (count > 0)
        call.say("lines that the server does not accept are kept as " + std::string(invalidLine) +
                 "; zebcfg check tells which");
}

}  // namespace

void update(const Call& call, const std::function<void(Changes& changes)>& body)
{
    (void)call.login();  // A password is asked for before others have to wait for the lock.
    Workplace place(call, Damage::refused);
    try {
        Changes changes(place.name(), place.file().shownName(), call.login());
        tellQuarantined(call, place, changes);
        body(changes);
        requireReadBack(place, changes);
    } catch (Failure& failure) {
        addPlace(failure, place.file().text(), place.file().shownName());
        throw;
    }
    place.finish();
}

void replaceText(const Call& call, const std::function<std::string(const LiveFile& file)>& newText)
{
    (void)call.login();
    Workplace place(call, Damage::allowed);
    overwriteFile(place.name(), newText(place.file()));
    place.finish();
}

void showDiff(const Call& call, const std::string& before, const std::string& after, const std::string& shownName)
{
    const std::string diff = unifiedDiff(before, after, shownName, !call.isJson() && call.hasColor(STDOUT_FILENO));
    std::cout << (call.isJson() ? diffToJson(diff) + '\n' : diff);
    if (!std::cout.flush())
        throw systemFailure(0, "cannot write the output, and nothing is changed");
}

void requireLogin(const Call& call, const std::string& text, const std::string& shownName)
{
    if (!call.login())
        return;
    const MemoryFile copy(text);
    const Session session(copy.name(), shownName, call.login());
}

void putInPlace(const Call& call, const LiveFile& other)
{
    const std::string name = resolvedName(call.fileName());
    const FileLock lock(name);
    if (call.isDryRun())
        return showDiff(call, "", other.text(), call.fileName());
    PrivateFile copy(siblingOf(name), {other.path(), other.status()});
    copy.write(other.text());
    copy.sync();
    copy.moveTo(name);
    syncDirectoryOf(name);
}
