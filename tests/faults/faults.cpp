#include "faults.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <pwd.h>
#include <sstream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

namespace {

FaultPlan current = {};
bool armed = false;
long counted = 0;
std::atomic<long> blocks = 0;
long found = 0;
long inherited = 0;

// What is looked for in memory that is released.
class Watch {
public:
    void start(const char* text)
    {
        constexpr std::size_t longest = 8;  // a longer text may be torn where a buffer has grown
        count = 0;
        if (text == nullptr)
            return;
        narrow.fill(0);
        std::strncpy(narrow.data(), text, narrow.size() - 1);
        const std::size_t size = std::strlen(narrow.data());
        addEnds(narrow.data(), size, std::min(size, longest));
        const std::size_t units = std::mbstowcs(wide.data(), text, wide.size());
        addEnds(wide.data(), units, std::min(units, longest));
    }
    bool isIn(const void* memory, std::size_t size) const
    {
        return std::any_of(parts.data(), parts.data() + count, [&](const auto& part) {
            return ::memmem(memory, size, part.first, part.second) != nullptr;
        });
    }

private:
    template <typename Unit>
    void addEnds(const Unit* text, std::size_t size, std::size_t length)
    {
        parts[count++] = {text, length * sizeof(Unit)};
        parts[count++] = {text + size - length, length * sizeof(Unit)};
    }

    std::array<char, 64> narrow = {};
    std::array<wchar_t, 64> wide = {};
    std::array<std::pair<const void*, std::size_t>, 4> parts = {};
    std::size_t count = 0;
};

Watch watch;

// Counts a call, and says whether the plan meets it.
bool isMet(FaultCalls call)
{
    if (!armed || (current.calls & call) == 0)
        return false;
    ++counted;
    return counted == current.first || (current.lasts && current.first != 0 && counted > current.first);
}

// Makes a call of the C library as the plan has it. shortened makes it with half of its bytes.
template <typename Call, typename Shortened>
auto planned(FaultCalls kind, Call call, Shortened shortened) -> decltype(call())
{
    if (!isMet(kind))
        return call();
    if (current.fault == Fault::error) {
        if (kind == faultClose)
            (void)call();
        errno = current.error;
        return -1;
    }
    const auto result = shortened();
    if (current.fault == Fault::kill)
        (void)::kill(::getpid(), SIGKILL);
    return result;
}

template <typename Call>
auto planned(FaultCalls kind, Call call) -> decltype(call())
{
    return planned(kind, call, call);
}

std::size_t halfOf(std::size_t size)
{
    return std::max(size / 2, std::min<std::size_t>(size, 1));
}

// The function that self stands in front of.
template <auto self>
auto behind(const char* name)
{
    static const auto next = reinterpret_cast<decltype(self)>(::dlsym(RTLD_NEXT, name));
    return next;
}

}  // namespace

void armFaults(const FaultPlan& plan)
{
    current = plan;
    counted = 0;
    armed = true;
}

long disarmFaults()
{
    armed = false;
    return counted;
}

bool isMemoryMet()
{
    return isMet(faultMemory);
}

long liveBlocks()
{
    return blocks;
}

long watchReleases(const char* text)
{
    watch.start(text);
    return found;
}

long inheritedFiles()
{
    return inherited;
}

namespace {

// The plan of a program that is started. It begins with the first call of setlocale, which programs make early in main:
// what constants take before is not theirs to care for.
class Start {
public:
    Start()
    {
        if (const char* const text = std::getenv("FAULT_WATCH"))
            watch.start(text);
        if (const char* const text = std::getenv("FAULT_PLAN")) {
            std::istringstream numbers(text);
            int fault = 0;
            isDue = static_cast<bool>(numbers >> plan.calls >> plan.first >> plan.lasts >> fault >> plan.error);
            plan.fault = static_cast<Fault>(fault);
        }
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;
    ~Start()
    {
        const long calls = disarmFaults();
        const long blocksFound = watchReleases(nullptr);
        const char* const report = std::getenv("FAULT_REPORT");
        std::FILE* const file = report != nullptr ? std::fopen(report, "we") : nullptr;
        if (file == nullptr)
            return;
        (void)std::fprintf(file, "%ld %ld\n", calls, blocksFound);
        (void)std::fclose(file);
    }
    void begin()
    {
        if (std::exchange(isDue, false))
            armFaults(plan);
    }

private:
    FaultPlan plan = {};
    bool isDue = false;
};

Start start;

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the headers of the C library have reserved names.

int open(const char* name, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it is started above
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    inherited += armed && (flags & O_CLOEXEC) == 0 ? 1 : 0;
    return planned(faultOpen, [&] { return behind<&open>("open")(name, flags, mode); });
}

ssize_t read(int file, void* data, std::size_t size)
{
    const auto take = [&](std::size_t count) { return behind<&read>("read")(file, data, count); };
    return planned(
        faultRead, [&] { return take(size); }, [&] { return take(halfOf(size)); });
}

ssize_t write(int file, const void* data, std::size_t size)
{
    const auto give = [&](std::size_t count) { return behind<&write>("write")(file, data, count); };
    return planned(
        faultWrite, [&] { return give(size); }, [&] { return give(halfOf(size)); });
}

int close(int file)
{
    return planned(faultClose, [&] { return behind<&close>("close")(file); });
}

int rename(const char* from, const char* to) noexcept
{
    return planned(faultRename, [&] { return behind<&rename>("rename")(from, to); });
}

int unlink(const char* name) noexcept
{
    return planned(faultUnlink, [&] { return behind<&unlink>("unlink")(name); });
}

int stat(const char* name, struct stat* status) noexcept
{
    return planned(faultStat, [&] { return behind<&stat>("stat")(name, status); });
}

int lstat(const char* name, struct stat* status) noexcept
{
    return planned(faultStat, [&] { return behind<&lstat>("lstat")(name, status); });
}

int fstat(int file, struct stat* status) noexcept
{
    const auto look = [&] { return behind<&fstat>("fstat")(file, status); };
    return planned(faultStat, look, [&] {
        const int result = look();
        status->st_size /= 8;
        return result;
    });
}

int renameat2(int from, const char* name, int to, const char* other, unsigned int flags) noexcept
{
    return planned(faultRename, [&] { return behind<&renameat2>("renameat2")(from, name, to, other, flags); });
}

int link(const char* from, const char* to) noexcept
{
    return planned(faultLink, [&] { return behind<&link>("link")(from, to); });
}

int fsync(int file)
{
    return planned(faultSync, [&] { return behind<&fsync>("fsync")(file); });
}

int ftruncate(int file, off_t size) noexcept
{
    return planned(faultCut, [&] { return behind<&ftruncate>("ftruncate")(file, size); });
}

int futimens(int file, const timespec* times) noexcept
{
    return planned(faultTime, [&] { return behind<&futimens>("futimens")(file, times); });
}

int fsetxattr(int file, const char* name, const void* value, std::size_t size, int flags) noexcept
{
    return planned(faultExtended, [&] { return behind<&fsetxattr>("fsetxattr")(file, name, value, size, flags); });
}

int memfd_create(const char* name, unsigned int flags) noexcept
{
    const char* const slowness = std::getenv("FAULT_SLOWNESS");
    const long time = slowness != nullptr ? std::strtol(slowness, nullptr, 10) : 0;
    timespec left = {time / 1000, time % 1000 * 1000000};
    while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
    return planned(faultNameless, [&] { return behind<&memfd_create>("memfd_create")(name, flags); });
}

int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return planned(faultOwner, [&] { return behind<&fchown>("fchown")(file, owner, group); });
}

int fchmod(int file, mode_t mode) noexcept
{
    return planned(faultMode, [&] { return behind<&fchmod>("fchmod")(file, mode); });
}

// What setlocale keeps is the C library's own, and it loses some of it when memory runs out: it does not count.
char* setlocale(int category, const char* locale) noexcept
{
    start.begin();
    const long before = blocks;
    char* const name = behind<&setlocale>("setlocale")(category, locale);
    blocks = before;
    return name;
}

// The texts of a language are kept too.
char* strerror(int number) noexcept
{
    const long kept = blocks;
    char* const text = behind<&strerror>("strerror")(number);
    blocks = kept;
    return text;
}

// The C library itself crashes when it has no memory here.
passwd* getpwuid(uid_t user)
{
    const bool wasArmed = std::exchange(armed, false);
    passwd* const entry = behind<&getpwuid>("getpwuid")(user);
    armed = wasArmed;
    return entry;
}

#ifndef __SANITIZE_ADDRESS__

// The C library's own names for what stands behind malloc: dlsym allocates memory itself.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

template <typename Allocate>
void* counting(Allocate allocate)
{
    if (isMet(faultMemory)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* const block = allocate();
    blocks += block != nullptr ? 1 : 0;
    return block;
}

void lookAt(void* block)
{
    if (block != nullptr && watch.isIn(block, ::malloc_usable_size(block)))
        ++found;
}

}  // namespace

void* malloc(std::size_t size) noexcept
{
    return counting([&] { return __libc_malloc(size); });
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    return counting([&] { return __libc_calloc(count, size); });
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return counting([&] { return __libc_memalign(alignment, size); });
}

// A failed call keeps the old block; one that goes well gives it up.
void* realloc(void* block, std::size_t size) noexcept
{
    if (block != nullptr && size == 0) {
        free(block);
        return nullptr;
    }
    lookAt(block);  // It may move, and then is released.
    void* const moved = counting([&] { return __libc_realloc(block, size); });
    blocks -= moved != nullptr && block != nullptr ? 1 : 0;
    return moved;
}

void free(void* block) noexcept
{
    lookAt(block);
    blocks -= block != nullptr ? 1 : 0;
    __libc_free(block);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int file, off_t offset) noexcept
{
    if (isMet(faultMemory)) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return behind<&mmap>("mmap")(address, size, protection, flags, file, offset);
}

int munmap(void* memory, std::size_t size) noexcept
{
    found += watch.isIn(memory, size) ? 1 : 0;
    return behind<&munmap>("munmap")(memory, size);
}

#endif

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
