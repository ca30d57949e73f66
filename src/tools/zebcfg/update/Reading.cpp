#include "update/Reading.h"

namespace {

LiveFile usableFile(const Target& target)
{
    LiveFile file(target.file);
    file.requireUsable(target.backup);
    return file;
}

}  // namespace

Reading::Reading(const Target& target)
    : file(usableFile(target)), copy(file.text()), opened(copy.name(), file.shownName(), target.login)
{}
