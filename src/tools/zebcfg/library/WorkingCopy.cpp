#include "library/WorkingCopy.h"

#include "base/Failure.h"
#include "base/Locale.h"
#include "files/Descriptor.h"
#include "library/ReadBack.h"

#include <utility>

namespace {

constexpr std::size_t mostCalls = 8;  // that are made again for each step that fails

}  // namespace

WorkingCopy::WorkingCopy(GuardedFile& copied, std::string shown, const std::optional<Login>& login)
    : file(copied), path(file.name()), shownName(std::move(shown))
{
    const Text start = readText();
    open(login);
    // What the library changes at its first write is no part of the changes that are compared later. The same text
    // again would load as the same entries.
    opened->flush();
    if (!holdsText(path, *start, shownName))
        open(login);
    addHead();
    original = holdsText(path, *start, shownName) ? start : readText();
    begin(original);
}

void WorkingCopy::addHead()
{
    if (!opened->search("", LDAP_SCOPE_BASE, "charset=*").empty())
        return;
    opened->modify("", {{LDAP_MOD_ADD, {"charset", {localeEncoding()}}}});
    if (opened->search("", LDAP_SCOPE_BASE, "version=*").empty())
        opened->modify("", {{LDAP_MOD_ADD, {"version", {"1"}}}});
}

void WorkingCopy::open(const std::optional<Login>& login)
{
    opened = std::make_unique<Session>(path, shownName, login);
}

// The file may be written then.
void WorkingCopy::load(const std::string& text)
{
    file.allowWrites();
    overwriteFile(path, text);
    open(std::nullopt);
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
    hold();
}

void WorkingCopy::hold()
{
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
    isLost = true;
    load(*checkpoint);
    begin(checkpoint);
    for (Call& call : kept)
        make(std::move(call));
    isLost = false;
    if (calls.size() >= mostCalls)
        advance();
}

// Not to a text that is read back as another one: the next load would hide from the end what is lost.
void WorkingCopy::advance()
{
    flush();
    Text now = readText();
    if (ReadBack(*now, file, shownName).isPlainlySame(*opened))
        begin(std::move(now));
    else
        hold();
}

std::string WorkingCopy::text()
{
    flush();
    std::string now = readFile(path, shownName);
    hold();
    return now;
}

void WorkingCopy::replaceText(const std::string& text, const std::function<void()>& body)
{
    const Text earlier = checkpoint;
    std::vector<Call> made = std::move(calls);
    try {
        load(text);
        begin(readText());
        body();
    } catch (const Failure&) {
        checkpoint = earlier;
        calls = std::move(made);
        goBack(calls.size());
        throw;
    }
}

bool WorkingCopy::write()
{
    if (isLost)
        throw Failure(LDAP_OTHER, "a change that failed could not be undone, and nothing is changed");
    flush();
    const bool isChanged = !holdsText(path, *original, shownName);
    original.reset();  // A large file has to be loaded beside this one.
    checkpoint.reset();
    return isChanged;
}
