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

// All but the first character, in text that is not plain.
void appendWithoutFirst(std::string_view text, std::string& out)
{
    WideText wide(text);
    wide.units.erase(0, 1);
    std::string narrow = wide2multibyte(wide.units);
    const Wiper wiper(narrow);
    out += narrow;
}

// continuation = a white space, then text that goes behind the value as it is
int readContinuations(LDIF_TextSource& in, int lastLine, std::string& value, bool& isPlain)
{
    for (; in.good(); ++lastLine) {
        const LDIF_PhysicalLine& line = in.read();
        if (!line.isContinuation()) {
            in.unread();
            break;
        }
        isPlain = isPlain && line.isPlain;
        reserveWiping(value, value.size() + line.text.size());
        if (line.isPlain)
            value += line.text.substr(1);
        else
            appendWithoutFirst(line.text, value);
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

// Keeps the memory of the texts: a line object reads the whole file.
void LDIF_Line::clear() noexcept
{
    value.clear();
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
    const LDIF_PhysicalLine& line = in.read();
    if (line.isBlank()) {
        type = blankLine;
        return lineNumber;
    }
    if (line.text[0] == '#') {
        type = comment;
        value = line.text;
        return lineNumber;
    }
    const std::size_t colon = line.findColon();
    readName(line, colon);
    const std::size_t start = wellFormed ? line.text.find_first_not_of(':', colon) : std::string_view::npos;
    bool isPlain = line.isPlain;
    reserveWiping(value, line.text.size());
    value = line.text.substr(std::min(start, line.text.size()));
    if (isPlain)
        value.erase(0, value.size() - withoutLeading(value).size());
    else
        stripLeading(value);
    const int last = readContinuations(in, lineNumber, value, isPlain);
    if (isPlain)
        value.resize(withoutTrailing(value).size());
    else
        stripTrailing(value);
    return last;
}

void LDIF_Line::readName(const LDIF_PhysicalLine& line, std::size_t colon)
{
    wellFormed = colon != std::string_view::npos && colon != 0;
    name = line.text.substr(0, wellFormed ? colon : line.text.size());
    type = isDn(wellFormed ? line.text.substr(0, colon) : line.text.substr(0, 2)) ? dn : attribute;
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
    reserveWiping(value, name.size() + 2 + value.size());
    value.insert(0, name + ": ");
    name = invalidLine;
}

LDIF_Exception illegalConstructor(const char* className, const LDIF_Line& line, SourcePos pos)
{
    const std::string call = std::string(className) + "( LDIF_Line::" + wordFor(line.type) + " );";
    return {LDAP_OTHER, CFG_ERR_UNEXPECTED, "Illegal constructor " + call, pos};
}
