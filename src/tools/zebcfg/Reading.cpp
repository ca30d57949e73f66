#include "Reading.h"

namespace {

LiveFile usableFile(const Call& call)
{
    LiveFile file(call.fileName());
    file.requireUsable(call.backupName());
    return file;
}

}  // namespace

Reading::Reading(const Call& call)
    : file(usableFile(call)), copy(file.text()), opened(copy.name(), file.shownName(), call.login())
{}
