#include "LDIF_LineSource.h"

#include "LDIF_Util.h"

#include <algorithm>

void w_stripCarriageReturn(std::wstring& text)
{
    text.erase(std::remove(text.begin(), text.end(), L'\r'), text.end());
}

bool LDIF_PhysicalLine::isBlank() const
{
    if (!isPlain)
        return w_isBlank(WideText(text).units);
    return std::all_of(text.begin(), text.end(), [](char byte) { return w_my_isspace(static_cast<wchar_t>(byte)); });
}

bool LDIF_PhysicalLine::isContinuation() const
{
    if (text.empty())
        return false;
    return w_my_isspace(isPlain ? static_cast<wchar_t>(text[0]) : WideText(text).units[0]);
}

std::size_t LDIF_PhysicalLine::findColon() const
{
    if (isPlain)
        return text.find(':');
    const WideText wide(text);
    const std::size_t colon = wide.units.find(L':');
    return colon == std::wstring::npos ? std::string::npos : wide2multibyte(wide.units.substr(0, colon)).size();
}

LDIF_TextSource::~LDIF_TextSource()
{
    wipe(stored);
}

const LDIF_PhysicalLine& LDIF_TextSource::read()
{
    if (pending) {
        pending = false;
        return line;
    }
    leftNothing = next == text.size();
    const std::size_t end = text.find('\n', next);
    metEnd = end == std::string::npos;
    start = next;
    next = metEnd ? text.size() : end + 1;
    set(text.substr(start, (metEnd ? text.size() : end) - start));
    return line;
}

void LDIF_TextSource::skip(std::size_t bytes) noexcept
{
    next = position() + bytes;
    pending = false;
    metEnd = metEnd && next == text.size();
}

// Makes a line of the bytes between two line ends, which the line borrows or, where they change, has stored.
void LDIF_TextSource::set(std::string_view bytes)
{
    line.isPlain = isPlain(bytes);
    line.text = bytes;
    if (line.isPlain && bytes.find('\r') == std::string_view::npos)
        return;
    WideText wide(bytes);
    w_stripCarriageReturn(wide.units);
    wipe(stored);
    stored = wide2multibyte(wide.units);
    line.text = stored;
}
