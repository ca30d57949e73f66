#include "formats/Ldif.h"

#include "base/Answers.h"
#include "base/Attributes.h"
#include "base/Encoding.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <optional>
#include <string_view>

#include <ldif.h>

namespace {

struct BerRelease {
    void operator()(void* memory) const noexcept { ber_memfree(memory); }
};

bool isPrintable(char character)
{
    return character >= ' ' && character <= '~';
}

// Whether libldap would write the line as it stands: no value in base64, as it writes some for their name alone.
bool isPlainLine(const std::string& name, const std::string& value)
{
    return isUtf8Locale() && !name.empty() && name.front() >= 'A' && !isSameName(name, "userPassword") &&
           std::all_of(name.begin(), name.end(), isPrintable) && !value.empty() &&
           std::all_of(value.begin(), value.end(), isPrintable) && value.back() != ' ' &&
           std::string_view(" :<").find(value.front()) == std::string_view::npos;
}

void appendLine(std::string& out, int type, const std::string& name, const std::string& value, std::size_t wrap)
{
    if (type == LDIF_PUT_VALUE && wrap == 0 && isPlainLine(name, value)) {
        out.append(name).append(": ").append(value) += '\n';
        return;
    }
    const ber_len_t width = wrap == 0 ? LDIF_LINE_WIDTH_MAX : wrap;
    const std::string written = toUtf8(value);
    const std::unique_ptr<char, BerRelease> line(
        ldif_put_wrap(type, toUtf8(name).c_str(), written.c_str(), static_cast<ber_len_t>(written.size()), width));
    if (line == nullptr)
        throw Failure(0, "out of memory for a line of LDIF");
    out += line.get();
}

// Takes what the LDAP client library would write to standard error beside the failure.
void keepQuiet(const char* /*text*/) {}

// Whether the reader would open a file for the line that begins a record: it does so for "include:".
bool isInclude(std::string_view line)
{
    constexpr std::string_view word = "include:";
    return line.size() >= word.size() && isSameName(line.substr(0, word.size()), word);
}

// Whether the reader takes the line in front of a record for its number. A record of nothing else gives none, or the
// one before once more.
bool isIndex(std::string_view line)
{
    return !line.empty() && std::isdigit(static_cast<unsigned char>(line[0])) != 0;
}

// Finds what the reader must not see: includes, which it would follow, NUL bytes, which end its lines, and numbers.
void requireHarmless(const std::string& text, const std::string& shownName)
{
    bool beginsRecord = true;  // leading comments do not count
    int number = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        ++number;
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line(text.data() + begin, end - begin);
        std::optional<Failure> failure;
        if (line.find('\0') != std::string_view::npos)
            failure.emplace(0, "there is a NUL byte in the line", shownName);
        else if (beginsRecord && isInclude(line))
            failure.emplace(LDAP_UNWILLING_TO_PERFORM, "other files are not included", shownName);
        else if (beginsRecord && isIndex(line))
            failure.emplace(0, "a record must begin with its dn", shownName);
        if (failure) {
            failure->fileLine = number;
            throw *failure;
        }
        const bool isBlank = line.empty() || line == "\r";
        beginsRecord = isBlank || (beginsRecord && (line[0] == '#' || line[0] == ' '));
        begin = end + 1;
    }
}

bool canBeCarried(std::string_view name)
{
    constexpr std::string_view blanks = " \t\v\f\r";
    const auto isWord = [&](const char* word) { return isSameName(name, word); };
    return !name.empty() && blanks.find(name.front()) == std::string_view::npos &&
           blanks.find(name.back()) == std::string_view::npos && name.front() != '#' &&
           visible(std::string(name)) == name && !isWord("dn") && !isWord("changetype") && !isWord("control");
}

}  // namespace

std::string toLdif(const Entry& entry, bool namesOnly, std::size_t wrap)
{
    constexpr std::size_t usualSize = 500;
    std::string text;
    text.reserve(usualSize);
    appendLine(text, LDIF_PUT_VALUE, "dn", shownDn(entry.dn), wrap);
    for (const Attribute& attribute : entry.attributes) {
        const bool isKnown = findAttributeType(attribute.name) != nullptr;
        const std::string name = isKnown ? attribute.name : shownLine(attribute.name);
        if (namesOnly)
            appendLine(text, LDIF_PUT_NOVALUE, name, "", wrap);
        for (const std::string& value : attribute.values) {
            const auto masked = maskedValue(attribute.name, value);
            if (!namesOnly)
                appendLine(text, LDIF_PUT_VALUE, name, masked ? *masked : value, wrap);
        }
    }
    text += '\n';
    return text;
}

bool isLdifName(const std::string& name)
{
    static Answers<bool> answers(&canBeCarried);
    return answers.of(name);
}

// The reader and the lines of the record that it has read last.
class LdifReader::Stream {
public:
    Stream(std::string& ldif, const std::string& shown)
        : shownName(shown), file(ldif_open_mem(ldif.data(), ldif.size(), "r"), &ldif_close)
    {
        if (file == nullptr)
            throw Failure(0, "the LDIF cannot be read", shownName);
        const BER_LOG_PRINT_FN quiet = &keepQuiet;
        ber_set_option(nullptr, LBER_OPT_LOG_PRINT_FN, reinterpret_cast<const void*>(quiet));
    }

    bool nextRecord()
    {
        char* raw = buffer.release();
        const int status = ldif_read_record(file.get(), &lastLine, &raw, &size);
        buffer.reset(raw);
        if (status < 0)
            throw failure(0, "the LDIF cannot be read");
        recordText = status > 0 && raw != nullptr ? raw : "";
        rest = raw;
        line = nextNumber = firstLine();
        return status > 0;
    }

    // A blank line follows each record: the text ends with two line ends.
    int firstLine() const { return static_cast<int>(lastLine) - linesIn(recordText); }

    // The next line, unfolded, or null after the last one.
    char* nextLine()
    {
        line = nextNumber;
        const std::size_t begin = offsetOfRest();
        char* const unfolded = ldif_getline(&rest);
        nextNumber += linesIn(std::string_view(recordText).substr(begin, offsetOfRest() - begin));
        return unfolded;
    }

    // A line "name: value", with one value.
    Attribute parse(char* unfolded) const
    {
        const char* const colon = std::strchr(unfolded, ':');
        if (colon == nullptr)
            throw failure(0, "the line has no colon");
        if (colon[1] == '<')
            throw failure(LDAP_UNWILLING_TO_PERFORM, "values are not fetched from URLs");
        berval name = {};
        berval value = {};
        int isOwned = 0;
        if (ldif_parse_line2(unfolded, &name, &value, &isOwned) != 0)
            throw failure(0, "the line cannot be read as LDIF");
        const std::unique_ptr<char, BerRelease> owner(isOwned != 0 ? value.bv_val : nullptr);
        Attribute attribute{std::string(name.bv_val, name.bv_len), {}};
        attribute.values.emplace_back(value.bv_val != nullptr ? std::string(value.bv_val, value.bv_len) : "");
        if (attribute.values.front().find('\0') != std::string::npos)
            throw failure(LDAP_INVALID_SYNTAX, shownLine(attribute.name) + ": the value contains a NUL byte");
        return inLocale(attribute);
    }

    // Of the line that was read last.
    int lineNumber() const { return line; }

    Failure failure(int code, const std::string& reason) const
    {
        Failure made(code, reason, shownName);
        made.fileLine = line;
        return made;
    }

    const std::string& record() const { return recordText; }

private:
    Attribute inLocale(const Attribute& attribute) const
    {
        try {
            return {fromUtf8(attribute.name), {fromUtf8(attribute.values.front())}};
        } catch (const Failure& refusal) {
            throw failure(refusal.code, refusal.text);
        }
    }

    static int linesIn(std::string_view text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }

    // libldap unfolds the lines in its buffer, where they stand as they do in recordText.
    std::size_t offsetOfRest() const
    {
        return rest != nullptr ? static_cast<std::size_t>(rest - buffer.get()) : recordText.size();
    }

    const std::string& shownName;
    const std::unique_ptr<LDIFFP, decltype(&ldif_close)> file;
    std::unique_ptr<char, BerRelease> buffer;
    int size = 0;
    unsigned long lastLine = 0;
    std::string recordText;
    char* rest = nullptr;
    int line = 0;
    int nextNumber = 0;  // of the line at rest
};

LdifReader::LdifReader(std::string ldif, std::string shown) : text(std::move(ldif)), shownName(std::move(shown))
{
    if (hasByteOrderMark(text)) {
        Failure failure(0, "the text begins with a byte order mark; save it without one", shownName);
        failure.fileLine = 1;
        throw failure;
    }
    requireHarmless(text, shownName);
    text += "\n\n";
    stream = std::make_unique<Stream>(text, shownName);
}

LdifReader::~LdifReader() = default;

// Takes one record apart. Lines are read only forwards.
class LdifReader::Parser {
public:
    Parser(Stream& lines, LdifRecord& result) : stream(lines), record(result) {}

    // False for a record that holds nothing but the version of LDIF.
    bool parse(LdifRecord::Type type)
    {
        record = {};
        record.type = type;
        record.line = stream.firstLine();
        record.text = stream.record();
        advance();
        if (line != nullptr && !isSeparator && isSameName(current.name, "version"))
            readVersion();
        if (line == nullptr)
            return false;
        if (isSeparator || !isSameName(current.name, "dn"))
            throw stream.failure(0, "a record must begin with its dn");
        record.dn = current.values.front();
        record.line = stream.lineNumber();
        advance();
        readType();
        if (record.type == LdifRecord::add)
            readAttributes();
        else if (record.type == LdifRecord::modify)
            readModifications();
        else if (record.type == LdifRecord::move)
            readMove();
        else if (line != nullptr)
            throw stream.failure(0, "a delete takes no further lines");
        return true;
    }

private:
    void advance()
    {
        line = stream.nextLine();
        isSeparator = line != nullptr && std::strcmp(line, "-") == 0;
        if (line != nullptr && !isSeparator)
            current = stream.parse(line);
    }

    void readVersion()
    {
        if (current.values.front() != "1")
            throw stream.failure(LDAP_UNWILLING_TO_PERFORM,
                                 "only version 1 of LDIF can be read, not " + shownLine(current.values.front()));
        advance();
    }

    void readType()
    {
        if (line == nullptr || isSeparator)
            return;
        if (isSameName(current.name, "control"))
            throw stream.failure(LDAP_UNWILLING_TO_PERFORM, "controls are not supported");
        if (!isSameName(current.name, "changetype"))
            return;
        const std::string type = current.values.front();
        if (isSameName(type, "add"))
            record.type = LdifRecord::add;
        else if (isSameName(type, "modify"))
            record.type = LdifRecord::modify;
        else if (isSameName(type, "delete"))
            record.type = LdifRecord::erase;
        else if (isSameName(type, "modrdn") || isSameName(type, "moddn"))
            record.type = LdifRecord::move;
        else
            throw stream.failure(0, "unknown changetype " + shownLine(type));
        advance();
    }

    void readAttributes()
    {
        for (; line != nullptr; advance()) {
            if (isSeparator)
                throw stream.failure(0, "a line \"-\" ends a modification, and there is none");
            const auto known = std::find_if(record.changes.begin(), record.changes.end(), [&](const Change& change) {
                return isSameName(change.attribute.name, current.name);
            });
            if (known == record.changes.end())
                addValue(record.changes.emplace_back(Change{LDAP_MOD_ADD, {current.name, {}}, stream.lineNumber()}));
            else
                addValue(*known);
        }
    }

    void readModifications()
    {
        while (line != nullptr) {
            Change& change =
                record.changes.emplace_back(Change{operation(), {current.values.front(), {}}, stream.lineNumber()});
            for (advance(); line != nullptr && !isSeparator; advance()) {
                if (!isSameName(current.name, change.attribute.name))
                    throw stream.failure(0, shownLine(current.name) + " is found where values of " +
                                                shownLine(change.attribute.name) + " or a line \"-\" are expected");
                addValue(change);
            }
            if (line != nullptr)
                advance();
        }
    }

    void readMove()
    {
        requireLine("newrdn");
        record.newRdn = current.values.front();
        advance();
        requireLine("deleteoldrdn");
        const std::string deletes = current.values.front();
        if (deletes != "0" && deletes != "1")
            throw stream.failure(0, "deleteoldrdn is 0 or 1");
        record.keepsOldRdn = deletes == "0";
        advance();
        if (line == nullptr)
            return;
        requireLine("newsuperior");
        record.newSuperior = current.values.front();
        advance();
        if (line != nullptr)
            throw stream.failure(0, "a modrdn takes no further lines");
    }

    void requireLine(const char* name) const
    {
        if (line == nullptr || isSeparator || !isSameName(current.name, name))
            throw stream.failure(0, "a modrdn has the lines newrdn, deleteoldrdn and, to move the entry elsewhere, "
                                    "newsuperior");
    }

    void addValue(Change& change) const
    {
        change.attribute.values.push_back(current.values.front());
        change.valueLines.push_back(stream.lineNumber());
    }

    int operation() const
    {
        if (!isSeparator) {
            if (isSameName(current.name, "add"))
                return LDAP_MOD_ADD;
            if (isSameName(current.name, "delete"))
                return LDAP_MOD_DELETE;
            if (isSameName(current.name, "replace"))
                return LDAP_MOD_REPLACE;
        }
        throw stream.failure(0, "a modification begins with add:, delete: or replace: and the name of an attribute");
    }

    Stream& stream;
    LdifRecord& record;
    char* line = nullptr;
    bool isSeparator = false;  // "-" alone; taking a line apart cuts it
    Attribute current;         // the line taken apart, unless it is a separator
};

const std::string& LdifReader::record() const
{
    return stream->record();
}

bool LdifReader::next(LdifRecord& record, LdifRecord::Type type)
{
    while (stream->nextRecord()) {
        if (Parser(*stream, record).parse(type))
            return true;
    }
    return false;
}
