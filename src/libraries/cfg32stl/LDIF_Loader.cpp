#include "LDIF_Loader.h"

#include "LDIF_EntryReader.h"
#include "LDIF_Exception.h"
#include "LDIF_Util.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <utility>

namespace {

constexpr char rootName[] = "<root>";

LDIF_Exception headFailure(int ldapErr, int extErr, const std::string& text, const LDIF_Attribute& attribute,
                           SourcePos pos = SourcePos::here())
{
    LDIF_Exception failure(ldapErr, extErr, text, pos);
    failure.entryDn = rootName;
    failure.attribute = attribute.name;
    failure.value = attribute.values.front().str();
    return failure;
}

// Whether it is the line that is at fault. An attribute where none may stand is at fault too, but ends the load; and
// what fails inside the library, for want of memory say, tells nothing about the line.
bool canBeQuarantined(const LDIF_Exception& failure)
{
    return failure.ldapErr != LDAP_OBJECT_CLASS_VIOLATION && failure.extErr != CFG_ERR_UNEXPECTED;
}

}  // namespace

LDIF_Loader::LDIF_Loader(LDIF_Tree& emptyTree, LDIF_Comment& waitingLines)
    : tree(emptyTree), root(tree.rootEntry()), waiting(waitingLines), source({tree.fileText(), tree.fileSize()})
{}

void LDIF_Loader::load()
{
    try {
        readText();
    } catch (...) {
        finishQuietly();
        throw;
    }
    tree.finish();
}

// The tree so far, for a load that has failed. Without memory for it the failure goes on all the same.
void LDIF_Loader::finishQuietly() noexcept
{
    wipe(tree.fileText() + done, tree.fileSize() - done);
    try {
        tree.finish();
    } catch (...) {
        return;  // The tree has no entries then.
    }
}

void LDIF_Loader::readText()
{
    LDIF_EntryReader reader;
    LDIF_Line line;
    const Wiper wiper(line.value);
    for (;;) {
        if (readEntry(reader))
            continue;
        if (!readLine(line))
            break;
        take(line);
        if (!current && waiting.lines.empty())
            forget();
    }
    closeEntry();
    forget();
    while (!waiting.lines.empty() && waiting.lines.back().type == LDIF_Line::blankLine)
        waiting.lines.pop_back();
}

// Takes in the next entry as it stands, where one may stand and no lines wait for it. The head is complete then.
bool LDIF_Loader::readEntry(LDIF_EntryReader& reader)
{
    if (current || !waiting.lines.empty() || !seenCharset || !seenVersion)
        return false;
    const LDIF_EntryReader::Form form = reader.read(source.rest());
    if (form == LDIF_EntryReader::unknown || !tree.load(reader.entry(), form == LDIF_EntryReader::asWritten))
        return false;
    source.skip(reader.length());
    lastLine += reader.lineCount();
    done = source.position();
    return true;
}

// Overwrites what has been read and is kept nowhere: it may hold clear passwords.
void LDIF_Loader::forget() noexcept
{
    wipe(tree.fileText() + done, source.position() - done);
    done = source.position();
}

std::string LDIF_Loader::currentDn() const
{
    return current ? printable(current->dn) : rootName;
}

// False at the end of the file.
bool LDIF_Loader::readLine(LDIF_Line& line)
{
    try {
        lastLine = line.next(source, lastLine);
    } catch (...) {
        ++lastLine;
        throw;
    }
    if (!line.wellFormed)
        quarantine(line);
    return line.type != LDIF_Line::endOfFile;
}

void LDIF_Loader::take(LDIF_Line& line)
{
    switch (line.type) {
    case LDIF_Line::blankLine:  // The one that ends an entry is not kept: each entry is written with one after it.
        if (current)
            return closeEntry();
        [[fallthrough]];
    case LDIF_Line::comment:
        waiting += line;
        return;
    case LDIF_Line::dn:
        return openEntry(line);
    case LDIF_Line::attribute:
        return takeAttribute(line);
    default:
        throw LDIF_Exception(LDAP_OTHER, CFG_ERR_UNEXPECTED, "Unknown LDIF_Line::Type!");
    }
}

void LDIF_Loader::takeAttribute(LDIF_Line& line)
{
    try {
        return addAttribute(line);
    } catch (const LDIF_Exception& failure) {
        if (!canBeQuarantined(failure))
            throw;
    }
    quarantine(line);
    addAttribute(line);
}

// A refused line leaves the waiting lines to the attribute that it becomes.
void LDIF_Loader::addAttribute(const LDIF_Line& line)
{
    if (current)
        return addToEntry(line);
    LDIF_Attribute attribute(line, LDIF_Comment());
    std::swap(attribute.comment, waiting);
    addToHead(attribute);
}

void LDIF_Loader::addToEntry(const LDIF_Line& line)
{
    const auto known = attributes.find(cisString(line.name));
    if (known != attributes.end())
        return known->second.add(line, waiting);
    LDIF_Attribute& added = attributes.emplace(line.name, LDIF_Attribute(line, LDIF_Comment())).first->second;
    std::swap(added.comment, waiting);
}

void LDIF_Loader::addToHead(const LDIF_Attribute& attribute)
{
    if (attribute == "version")
        addOnce(attribute, "version", seenVersion);
    else if (attribute == "charset")
        addOnce(attribute, "charset", seenCharset);
    else
        throw headFailure(LDAP_OBJECT_CLASS_VIOLATION, CFG_ERR_NOT_IN_CLASS,
                          '"' + attribute.name + "\" attribute not allowed in <root> object", attribute);
}

void LDIF_Loader::addOnce(const LDIF_Attribute& attribute, const char* name, bool& seen)
{
    if (seen)
        throw headFailure(LDAP_CONSTRAINT_VIOLATION, CFG_ERR_SINGLE_VALUED,
                          std::string("More than 1 \"") + name + "\" attribute not allowed", attribute);
    root += attribute;
    seen = true;
}

// The first entry marks the head as complete.
void LDIF_Loader::openEntry(const LDIF_Line& line)
{
    closeEntry();
    addDefault("charset", "ISO-8859-1", seenCharset);
    addDefault("version", "1", seenVersion);
    current.emplace(line, LDIF_Comment());
    std::swap(current->comment, waiting);
}

void LDIF_Loader::closeEntry()
{
    if (!current)
        return;
    for (auto& each : attributes)
        current->attributes.push_back(std::move(each.second));
    attributes.clear();
    const std::size_t end = source.position();
    if (tree.load(std::move(*current), {tree.fileText() + done, end - done}))
        done = end;
    current.reset();
}

void LDIF_Loader::addDefault(const char* name, const char* value, bool& seen)
{
    if (seen)
        return;
    LDIF_Attribute attribute(name, value);
    std::swap(attribute.comment, waiting);
    root += attribute;
    seen = true;
}

void LDIF_Loader::quarantine(LDIF_Line& line)
{
    line.changeToInvalidAttr();
    quarantined = true;
}
