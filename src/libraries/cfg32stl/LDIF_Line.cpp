#include "LDIF_Line.h"

#include "LDIF_Util.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <istream>

namespace {

constexpr char invalidLine[] = "zeb-slapdInvalidLine";

std::wstring readPhysicalLine(std::istream& in)
{
    std::string bytes;
    std::getline(in, bytes);
    std::wstring line = multibyte2wide(bytes);
    w_stripCarriageReturn(line);
    return line;
}

bool isDn(const std::string& name)
{
    return _stricmp(name.c_str(), "dn") == 0;
}

// continuation = a white space, then text that goes behind the value as it is
int readContinuations(std::istream& in, int lastLine, std::wstring& text)
{
    for (; !in.eof(); ++lastLine) {
        const auto position = in.tellg();
        const std::wstring line = readPhysicalLine(in);
        if (line.empty() || !w_my_isspace(line[0])) {
            in.seekg(position);
            break;
        }
        text.append(line, 1, std::wstring::npos);
    }
    return lastLine;
}

const char* wordFor(LDIF_Line::Type type)
{
    switch (type) {
    case LDIF_Line::endOfFile:
        return "endOfFile";
    case LDIF_Line::blankLine:
        return "blankLine";
    case LDIF_Line::comment:
        return "comment";
    case LDIF_Line::dn:
        return "dn";
    case LDIF_Line::attribute:
        return "attribute";
    default:
        return "UNKNOWN";
    }
}

}  // namespace

int LDIF_Line::next(std::istream& in, int lastLine)
{
    *this = LDIF_Line();
    lineNumber = lastLine + 1;
    if (!in.good())
        return lastLine;
    std::wstring line = readPhysicalLine(in);
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
    line.erase(0, line.find_first_not_of(L':', wellFormed ? colon : line.size()));
    w_stripLeading(line);
    const int last = readContinuations(in, lineNumber, line);
    value = wide2multibyte(w_stripTrailing(line));
    return last;
}

void LDIF_Line::readName(const std::wstring& line, std::size_t colon)
{
    wellFormed = colon != std::wstring::npos && colon != 0;
    name = wide2multibyte(wellFormed ? line.substr(0, colon) : line);
    const bool opensEntry = wellFormed ? isDn(name) : isDn(wide2multibyte(line.substr(0, 2)));
    type = opensEntry ? dn : attribute;
}

std::string LDIF_Line::str() const
{
    std::string text;
    appendTo(text);
    return text;
}

void LDIF_Line::appendTo(std::string& out) const
{
    if (type == dn || type == attribute)
        out.append(name).append(": ");
    out += value;
}

void LDIF_Line::changeToInvalidAttr()
{
    value.insert(0, name + ": ");
    name = invalidLine;
}

LDIF_Exception illegalConstructor(const char* className, const LDIF_Line& line, SourcePos pos)
{
    const std::string call = std::string(className) + "( LDIF_Line::" + wordFor(line.type) + " );";
    return {LDAP_OTHER, CFG_ERR_UNEXPECTED, "Illegal constructor " + call, pos};
}

void w_stripCarriageReturn(std::wstring& text)
{
    text.erase(std::remove(text.begin(), text.end(), L'\r'), text.end());
}
