#include "fuzz.h"

#include <cstdio>
#include <cstdlib>

static const ScopedLocale utf8;

void require(bool holds, const char* what, const std::string& text)
{
    if (holds)
        return;
    std::fprintf(stderr, "It does not hold that %s:\n%s\n", what, text.c_str());
    std::abort();
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts(1);
    for (const char each : text)
        if (each == separator)
            parts.emplace_back();
        else
            parts.back() += each;
    return parts;
}

bool losesByPrinting(const LDIF_DN& dn)
{
    for (const LDIF_RDN& rdn : dn)
        for (const auto& [name, value] : rdn)
            if ((value.form == LDIF_RDN_value::FORM_PLAIN && (value[0] == '(' || value[0] == ')')) ||
                (value.form == LDIF_RDN_value::FORM_QUOTED && value.find('\0') != std::string::npos))
                return true;
    return false;
}
