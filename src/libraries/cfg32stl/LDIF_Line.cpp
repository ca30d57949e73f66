#include "LDIF_Line.h"

#include "LDIF_LineSource.h"
#include "LDIF_Util.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <istream>
#include <iterator>

namespace {

constexpr char invalidLine[] = "zeb-slapdInvalidLine";

bool isDn(std::string_view name)
{
    return name.size() == 2 && foldCase(name[0]) == 'd' && foldCase(name[1]) == 'n';
}

// continuation = a white space, then text that goes behind the value as it is
int readContinuations(LDIF_TextSource& in, int lastLine, std::wstring& value)
{
    for (; in.good(); ++lastLine) {
        const std::wstring& line = in.read();
        if (line.empty() || !w_my_isspace(line[0])) {
            in.unread();
            break;
        }
        reserveWiping(value, value.size() + line.size());
        value.append(line, 1);
    }
    return lastLine;
}

const char* wordFor(LDIF_Line::Type type)
{
    constexpr const char* words[] = {"endOfFile", "blankLine", "comment", "dn", "attribute"};
    return type >= LDIF_Line::endOfFile && type <= LDIF_Line::attribute ? words[type] : "UNKNOWN";
}

}  // namespace

void LDIF_Line::clear() noexcept
{
    wipe(value);
    name.clear();
    type = endOfFile;
    wellFormed = true;
}

// The stream is read to its end, and goes back to where the next line begins.
int LDIF_Line::next(std::istream& in, int lastLine)
{
    if (!in.good()) {
        clear();
        lineNumber = lastLine + 1;
        return lastLine;
    }
    const std::istream::pos_type start = in.tellg();
    std::string text(std::istreambuf_iterator<char>(in), {});
    const Wiper wiper(text);
    LDIF_TextSource source(text);
    const int last = next(source, lastLine);
    if (source.good())
        in.seekg(start + static_cast<std::streamoff>(source.position()));
    else
        in.setstate(std::ios::eofbit);
    return last;
}

int LDIF_Line::next(LDIF_TextSource& in, int lastLine)
{
    clear();
    lineNumber = lastLine + 1;
    if (!in.good())
        return lastLine;
    const std::wstring& line = in.read();
    if (w_isBlank(line)) {
        type = blankLine;
        return lineNumber;
    }
    if (line[0] == L'#') {
        type = comment;
        value = wide2multibyte(line);
        return lineNumber;
    }
    const std::size_t colon = line.find(L':');
    readName(line, colon);
    std::wstring joined;
    const Wiper wiper(joined);
    if (wellFormed)
        joined = line.substr(std::min(line.find_first_not_of(L':', colon), line.size()));
    w_stripLeading(joined);
    const int last = readContinuations(in, lineNumber, joined);
    value = wide2multibyte(w_stripTrailing(joined));
    return last;
}

void LDIF_Line::readName(const std::wstring& line, std::size_t colon)
{
    wellFormed = colon != std::wstring::npos && colon != 0;
    name = wide2multibyte(line.substr(0, wellFormed ? colon : line.size()));
    type = isDn(wellFormed ? name : name.substr(0, 2)) ? dn : attribute;
}

void LDIF_Line::appendTo(std::string& out) const
{
    if (type == dn || type == attribute)
        out.append(name).append(": ");
    out += value;
}

void LDIF_Line::changeToInvalidAttr()
{
    reserveWiping(value, name.size() + 2 + value.size());
    value.insert(0, name + ": ");
    name = invalidLine;
}

LDIF_Exception illegalConstructor(const char* className, const LDIF_Line& line, SourcePos pos)
{
    const std::string call = std::string(className) + "( LDIF_Line::" + wordFor(line.type) + " );";
    return {LDAP_OTHER, CFG_ERR_UNEXPECTED, "Illegal constructor " + call, pos};
}
