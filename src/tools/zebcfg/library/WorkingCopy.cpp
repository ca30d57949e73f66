#include "library/WorkingCopy.h"

#include "base/Failure.h"
#include "files/Descriptor.h"

#include <utility>

#include <langinfo.h>

WorkingCopy::WorkingCopy(GuardedFile& copied, std::string shown, std::optional<Login> wanted)
    : file(copied), path(file.name()), shownName(std::move(shown)), login(std::move(wanted))
{
    const Text start = readText();
    open();
    // What the library changes at its first write is no part of the changes that are compared later. The same text
    // again would load as the same entries.
    opened->flush();
    if (!holdsText(path, *start, shownName))
        open();
    addHead();
    original = holdsText(path, *start, shownName) ? start : readText();
    begin(original);
}

void WorkingCopy::addHead()
{
    if (!opened->search("", LDAP_SCOPE_BASE, "charset=*").empty())
        return;
    opened->modify("", {{LDAP_MOD_ADD, {"charset", {::nl_langinfo(CODESET)}}}});
    if (opened->search("", LDAP_SCOPE_BASE, "version=*").empty())
        opened->modify("", {{LDAP_MOD_ADD, {"version", {"1"}}}});
}

void WorkingCopy::open()
{
    opened = std::make_unique<Session>(path, shownName, login);
}

// The file may be written then.
void WorkingCopy::load(const std::string& text)
{
    file.allowWrites();
    overwriteFile(path, text);
    open();
}

// The file may be written then, and has what the tree has.
void WorkingCopy::flush()
{
    file.allowWrites();
    opened->deferWrites(false);
    if (!calls.empty())
        opened->flush();
}

WorkingCopy::Text WorkingCopy::readText() const
{
    return std::make_shared<const std::string>(readFile(path, shownName));
}

// From a text that is in the file and in the tree.
void WorkingCopy::begin(Text text)
{
    checkpoint = std::move(text);
    calls.clear();
    file.refuseWrites();
    opened->deferWrites(true);
}

void WorkingCopy::make(Call call)
{
    call(*opened);
    calls.push_back(std::move(call));
}

// Without memory the library may have made what it reports as failed.
void WorkingCopy::step(const std::function<void()>& body)
{
    const std::size_t before = calls.size();
    try {
        body();
    } catch (const Failure& failure) {
        if (calls.size() > before || failure.code == CFG_NO_MEMORY)
            goBack(before);
        throw;
    }
}

// A copy of the whole at each step would be most of the work: the calls since the last one are made again.
void WorkingCopy::goBack(std::size_t count)
{
    std::vector<Call> kept = std::move(calls);
    kept.resize(count);
    load(*checkpoint);
    begin(checkpoint);
    for (Call& call : kept)
        make(std::move(call));
    flush();
    begin(readText());
}

const std::string& WorkingCopy::text()
{
    flush();
    begin(readText());
    return *checkpoint;
}

void WorkingCopy::replaceText(const std::string& text, const std::function<void()>& body)
{
    try {
        load(text);
        body();
    } catch (const Failure&) {
        goBack(0);
        throw;
    }
    begin(readText());
}

bool WorkingCopy::write()
{
    flush();
    const bool isChanged = !holdsText(path, *original, shownName);
    original.reset();  // A large file has to be loaded beside this one.
    checkpoint.reset();
    return isChanged;
}
