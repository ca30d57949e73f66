#include "LDIF_LineSource.h"

#include "LDIF_Util.h"
#include "platform.h"

#include <algorithm>
#include <istream>
#include <utility>

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

void LDIF_LineSource::set(LDIF_PhysicalLine& line, std::string_view bytes)
{
    line.isPlain = isPlain(bytes);
    line.text = bytes;
    if (line.isPlain && (!mayHoldReturns || bytes.find('\r') == std::string_view::npos))
        return;
    WideText wide(bytes);
    w_stripCarriageReturn(wide.units);
    wipe(stored);
    stored = wide2multibyte(wide.units);
    line.text = stored;
}

LDIF_LineSource::~LDIF_LineSource()
{
    wipe(stored);
}

LDIF_TextSource::LDIF_TextSource(std::string&& wholeText)
    : LDIF_LineSource(wholeText.find('\r') != std::string::npos), text(std::move(wholeText))
{}

LDIF_TextSource::~LDIF_TextSource()
{
    discard(&text[forgotten], text.size() - forgotten);
}

int LDIF_TextSource::skip(std::size_t bytes) noexcept
{
    const auto start = text.begin() + static_cast<std::ptrdiff_t>(next);
    next += bytes;
    return static_cast<int>(std::count(start, start + static_cast<std::ptrdiff_t>(bytes), '\n'));
}

void LDIF_TextSource::forgetBefore(std::size_t end) noexcept
{
    constexpr std::size_t piece = std::size_t{64} << 10;
    if (end < forgotten + piece)
        return;
    discard(&text[forgotten], end - forgotten);
    forgotten = end;
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
    const std::size_t start = next;
    next = metEnd ? text.size() : end + 1;
    set(line, std::string_view(text).substr(start, (metEnd ? text.size() : end) - start));
    return line;
}

bool LDIF_StreamSource::good() const
{
    return in.good();
}

const LDIF_PhysicalLine& LDIF_StreamSource::read()
{
    start = in.tellg();
    std::getline(in, bytes);
    set(line, bytes);
    return line;
}

// A stream that has failed, for want of anything to read, stays where it is.
void LDIF_StreamSource::unread()
{
    in.seekg(start);
}
