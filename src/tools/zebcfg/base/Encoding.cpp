#include "base/Encoding.h"

#include "base/Failure.h"
#include "base/Locale.h"

#include <ldapNames.h>

bool isUtf8Locale()
{
    return localeEncoding() == "UTF-8";
}

std::string toUtf8(const std::string& text)
{
    return isUtf8Locale() ? text : localeToUtf8(text).value_or(text);
}

std::string fromUtf8(std::string text)
{
    if (isUtf8Locale())
        return text;
    const auto result = utf8ToLocale(text);
    if (!result)
        throw Failure(LDAP_INVALID_SYNTAX,
                      "there are characters that the locale's encoding does not have, " + localeEncoding());
    return *result;
}
