#include "files/GuardedFile.h"

#include "base/Failure.h"

#include <fcntl.h>
#include <ldapNames.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void require(bool isDone)
{
    if (!isDone)
        throw systemFailure(LDAP_OTHER, "cannot guard a file in memory");
}

}  // namespace

GuardedFile::GuardedFile(const std::string& text)
    : content(text), place(::fcntl(content.descriptor(), F_DUPFD_CLOEXEC, 0))
{
    require(place.isOpen());
}

std::string GuardedFile::name() const
{
    return place.name();
}

// The name stands for a socket then, with the modification time of the file.
void GuardedFile::refuseWrites()
{
    struct stat status = {};
    require(::fstat(content.descriptor(), &status) == 0);
    const struct timespec times[] = {status.st_atim, status.st_mtim};
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    require(socket.isOpen() && ::futimens(socket.get(), times) == 0 &&
            ::dup3(socket.get(), place.get(), O_CLOEXEC) >= 0);
}

void GuardedFile::allowWrites()
{
    require(::dup3(content.descriptor(), place.get(), O_CLOEXEC) >= 0);
}
