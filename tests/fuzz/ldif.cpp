// LDIF of zebcfg: read, written and read again; the seeds are held against libldap's reader too.
#include "base/Failure.h"
#include "base/Masking.h"
#include "formats/LdifReader.h"
#include "formats/LdifWriter.h"
#include "fuzz.h"

#include <cstring>
#include <regex>

#include <ldif.h>

namespace {

// All lines, without comments and folds, and an empty one in front of each record.
std::string readByTool(const std::string& text)
try {
    std::string all;
    LdifLine line;
    for (LdifLines lines(text, ""); lines.nextRecord();)
        for (std::string begin = "\n"; lines.next(line); begin.clear())
            all += begin + (line.isSeparator ? "-\n" : line.name + ": " + line.value + '\n');
    return all;
} catch (const Failure&) {
    return "refused";
}

std::string readByLibldap(std::string text)
{
    const BER_LOG_PRINT_FN quiet = [](const char*) {};
    ber_set_option(nullptr, LBER_OPT_LOG_PRINT_FN, reinterpret_cast<const void*>(quiet));
    text += '\n';
    const std::unique_ptr<LDIFFP, decltype(&ldif_close)> file(ldif_open_mem(text.data(), text.size(), "r"), ldif_close);
    std::string all;
    bool isRead = true;
    char* record = nullptr;
    int size = 0;
    for (unsigned long number = 0; ldif_read_record(file.get(), &number, &record, &size) > 0;) {
        all += '\n';
        for (char *rest = record, *line = ldif_getline(&rest); line != nullptr; line = ldif_getline(&rest)) {
            berval name = {}, value = {};
            int isOwned = 0;
            const bool isSeparator = std::strcmp(line, "-") == 0;
            isRead = isRead && (isSeparator || ldif_parse_line2(line, &name, &value, &isOwned) == 0);
            if (isRead)
                all += isSeparator ? "-\n" : name.bv_val + std::string(": ").append(value.bv_val, value.bv_len) + '\n';
        }
    }
    ber_memfree(record);
    return isRead && all.find('\0') == std::string::npos ? all : "refused";
}

// What libldap reads in its own way, each with an example.
const struct {
    const char* name;
    std::regex pattern;
    std::string example;
} differences[] = {
    {"files are opened", std::regex("include:|:<", std::regex::icase), "include: file:///dev/null\n"},
    {"a NUL byte ends a line", std::regex("\\0"), std::string("a: b\0c\n", 7)},
    {"a number is passed over", std::regex("(^|\n)[0-9]"), "1\n"},
    {"a byte order mark is a name", std::regex("^\xEF\xBB\xBF"), "\xEF\xBB\xBF:\n"},
    {"a carriage return stays in a name", std::regex("\r[^\n]"), "a\rb: c\n"},
    {"a fold stays in a name", std::regex("(^|\n)[^ #\n][^:\n]*:?\r?\n "), "a\n b: c\n"},
    {"padding stands anywhere",
     std::regex("::(?! *([^=\\s]{4})*([^=\\s]{2}==|[^=\\s]{3}=)?\r?(\n(?! )|$))[^\n]*(\n [^\n]*)*="), "a:: ====\n"},
    {"base64 has digits", std::regex("::\\s*(\n|$)"), "a::\n"},
    {"blanks are digits", std::regex("::[^\n]*[ \t\v\f]+\r?(\n|$)"), "a:: YWJj \n"},
};

std::vector<Entry> entriesOf(const std::string& text)
try {
    std::vector<Entry> entries;
    LdifRecord record;
    for (LdifReader reader(text, ""); reader.next(record, LdifRecord::add);) {
        entries.push_back({record.dn, {}});
        for (const Change& change : record.changes)
            if (record.type == LdifRecord::add && isLdifName(change.attribute.name))
                entries.back().attributes.push_back(change.attribute);
    }
    return entries;
} catch (const Failure&) {
    return {};
}

// The seeds alone: of texts that are no LDIF, libldap reads more than can be named.
[[maybe_unused]] void holdAgainstLibldap(const std::string& text)
{
    bool mayDiffer = false;
    for (const auto& [name, pattern, example] : differences) {
        mayDiffer = mayDiffer || std::regex_search(text, pattern);
        require(std::regex_search(example, pattern) && readByTool(example) != readByLibldap(example), name, example);
    }
    require(mayDiffer || readByTool(text) == readByLibldap(text), "libldap reads the same", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = textOf(data, size);
    showPasswords(true);
#ifndef ZEBLDAPCFG_FUZZ
    holdAgainstLibldap(text);
#endif
    const auto entries = entriesOf(text);
    for (const std::size_t wrap : {0U, 3U, 76U}) {
        std::string written;
        for (const Entry& entry : entries)
            written += toLdif(entry, false, wrap);
        require(entriesOf(written) == entries, "what is written reads the same", text);
    }
    return 0;
}
