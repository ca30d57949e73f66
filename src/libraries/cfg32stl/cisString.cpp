#include "cisString.h"

#include "LDIF_Util.h"
#include "platform.h"

#include <cstring>

cisString& cisString::append(const std::wstring& source, unsigned int pos, unsigned int count)
{
    append(wide2multibyte(source.substr(pos, count)));
    return *this;
}

// Equal texts mostly are the same bytes.
int cisString::compare(const cisString& other) const
{
    if (size() == other.size() && std::memcmp(data(), other.data(), size()) == 0)
        return 0;
    return compare(other.c_str());
}

int cisString::compare(const char* other) const
{
    return compareFoldedText(c_str(), other);
}
