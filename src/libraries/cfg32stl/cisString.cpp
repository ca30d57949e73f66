#include "cisString.h"

#include "LDIF_Util.h"
#include "platform.h"

cisString& cisString::append(const std::wstring& source, unsigned int pos, unsigned int count)
{
    append(wide2multibyte(source.substr(pos, count)));
    return *this;
}

int cisString::compare(const char* other) const
{
    return _stricmp(c_str(), other);
}
