#include "library/Dn.h"

#include "base/Failure.h"

#include <algorithm>

DnSpeller::DnSpeller() : emptyFile(""), session(emptyFile.name(), "") {}

std::string DnSpeller::operator()(const std::string& dn) const
{
    return isRootDn(dn) ? std::string() : session.spellingIfMissing(dn).value_or(dn);
}

std::string DnSpeller::orNothing(const std::string& dn) const
{
    try {
        return (*this)(dn);
    } catch (const Failure&) {
        return {};
    }
}

bool isRootDn(const std::string& dn)
{
    return dn.find_first_not_of(" \t\r\n\v\f()") == std::string::npos;
}

// The first comma that is neither escaped nor within quotes ends the RDN, and a blank stands behind it.
std::string parentOf(const std::string& dn)
{
    bool isQuoted = false;
    for (std::size_t i = 0; i < dn.size(); ++i) {
        if (dn[i] == '\\')
            ++i;
        else if (dn[i] == '"')
            isQuoted = !isQuoted;
        else if (dn[i] == ',' && !isQuoted)
            return dn.substr(std::min(i + 2, dn.size()));
    }
    return {};
}

std::string nearestNote(const std::string& dn, const std::function<bool(const std::string& dn)>& exists)
{
    for (std::string above = parentOf(dn); !above.empty(); above = parentOf(above)) {
        if (exists(above))
            return "; the nearest entry that exists is " + above;
    }
    return {};
}
