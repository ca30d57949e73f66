#include "Reading.h"

#include "Failure.h"

namespace {

LiveFile usableFile(const Call& call)
{
    LiveFile file(call.fileName());
    const std::string damage = file.damage(call.backupName());
    if (!damage.empty())
        throw Failure(CFG_CONNECT_ERROR, damage, file.shownName());
    return file;
}

}  // namespace

Reading::Reading(const Call& call)
    : file(usableFile(call)), copy(file.text()), opened(copy.name(), file.shownName(), call.login())
{}
