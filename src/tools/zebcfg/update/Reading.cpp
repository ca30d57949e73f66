#include "update/Reading.h"

#include "base/Attributes.h"
#include "base/Masking.h"
#include "terminal/Progress.h"

namespace {

LiveFile usableFile(const Target& target)
{
    LiveFile file(target.file);
    file.requireUsable(target.backup);
    return file;
}

}  // namespace

Reading::Reading(const Target& target)
    : file(usableFile(target)), copy(file.text()), opened(loadedCopy(copy, file.shownName(), target.login))
{}

Session loadedCopy(const MemoryFile& copy, const std::string& shownName, const std::optional<Login>& login)
{
    const Progress progress("Loading");
    return {copy.name(), shownName, login};
}

Failure missingAttribute(const std::string& name, const std::string& shownFile)
{
    Failure failure(LDAP_NO_SUCH_ATTRIBUTE, "the entry has no such attribute" + attributeHint(name), shownFile);
    failure.attribute = shownLine(name);
    return failure;
}
