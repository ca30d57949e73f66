// Preloaded into the tool: one of its calls that change files or directories is refused. REFUSAL is NAME:N for the Nth
// call of that name, from 1. SLOWNESS is the time, in milliseconds, that it takes to make a file in memory.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

bool isRefused(const char* name)
{
    static const char* const wanted = std::getenv("REFUSAL");
    const char* const colon = wanted != nullptr ? std::strchr(wanted, ':') : nullptr;
    if (colon == nullptr)
        return false;
    if (std::string_view(wanted, static_cast<std::size_t>(colon - wanted)) != name)
        return false;
    static long left = std::strtol(colon + 1, nullptr, 10);
    if (--left != 0)
        return false;
    errno = EPERM;
    return true;
}

template <typename... Arguments>
int call(const char* name, Arguments... arguments)
{
    if (isRefused(name))
        return -1;
    return reinterpret_cast<int (*)(Arguments...)>(::dlsym(RTLD_NEXT, name))(arguments...);
}

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the headers of the C library have reserved names.
extern "C" {
int rename(const char* from, const char* to) noexcept
{
    return call("rename", from, to);
}
int renameat2(int from, const char* name, int to, const char* other, unsigned int flags) noexcept
{
    return call("renameat2", from, name, to, other, flags);
}
int link(const char* from, const char* to) noexcept
{
    return call("link", from, to);
}
int unlink(const char* name) noexcept
{
    return call("unlink", name);
}
int fsync(int file)
{
    return call("fsync", file);
}
int fchmod(int file, mode_t mode) noexcept
{
    return call("fchmod", file, mode);
}
int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return call("fchown", file, owner, group);
}
int ftruncate(int file, off_t size) noexcept
{
    return call("ftruncate", file, size);
}
int memfd_create(const char* name, unsigned int flags) noexcept
{
    const char* const slowness = std::getenv("SLOWNESS");
    const long time = slowness != nullptr ? std::strtol(slowness, nullptr, 10) : 0;
    timespec left = {time / 1000, time % 1000 * 1000000};
    while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
    return call("memfd_create", name, flags);
}
int fsetxattr(int file, const char* name, const void* value, std::size_t size, int flags) noexcept
{
    return call("fsetxattr", file, name, value, size, flags);
}
int futimens(int file, const struct timespec* times) noexcept
{
    return call("futimens", file, times);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
