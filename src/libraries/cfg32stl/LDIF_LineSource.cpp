#include "LDIF_LineSource.h"

#include "LDIF_Util.h"

#include <algorithm>

void w_stripCarriageReturn(std::wstring& text)
{
    text.erase(std::remove(text.begin(), text.end(), L'\r'), text.end());
}

LDIF_TextSource::~LDIF_TextSource()
{
    wipe(line);
}

const std::wstring& LDIF_TextSource::read()
{
    if (pending) {
        pending = false;
        return line;
    }
    leftNothing = next == text.size();
    const std::size_t end = std::min(text.find('\n', next), text.size());
    metEnd = end == text.size();
    start = next;
    next = metEnd ? end : end + 1;
    WideText wide(text.substr(start, end - start));
    w_stripCarriageReturn(wide.units);
    line.swap(wide.units);
    return line;
}

void LDIF_TextSource::skip(std::size_t bytes) noexcept
{
    next = position() + bytes;
    pending = false;
    metEnd = metEnd && next == text.size();
}
