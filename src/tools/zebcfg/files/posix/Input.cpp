#include "files/Input.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"

#include <array>
#include <cerrno>
#include <chrono>

#include <fcntl.h>
#include <ldapNames.h>
#include <poll.h>
#include <unistd.h>

namespace {

// Reads a pipe to its end: the last writer has closed it. It may be slow; a pipe without a writer is waited for a
// minute.
std::string readPipe(int pipe, const std::string& shownName)
{
    using namespace std::chrono_literals;
    constexpr auto longestWait = 60s;
    constexpr int pollTime = 100;  // milliseconds
    auto lastWriter = std::chrono::steady_clock::now();
    std::string text;
    std::array<char, 4096> buffer = {};
    for (;;) {
        pollfd event = {pipe, POLLIN, 0};
        (void)::poll(&event, 1, pollTime);
        const ssize_t count = ::read(pipe, buffer.data(), buffer.size());
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot read", shownName);
        if (count == 0 && (!text.empty() || (event.revents & POLLHUP) != 0))
            return text;
        if (count == 0 && std::chrono::steady_clock::now() - lastWriter > longestWait)
            throw Failure(0, "nothing has been written to the pipe for a minute", shownName);
        if (count != 0)
            lastWriter = std::chrono::steady_clock::now();
        text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

}  // namespace

std::string readNamed(const std::string& name)
{
    const Descriptor file(openForReading(name));
    FileInfo info;
    if (!file.isOpen() || !readInfo(file.get(), info))
        throw systemFailure(LDAP_OTHER, "cannot open", name);
    if (info.kind == FileKind::pipe)
        return readPipe(file.get(), name);
    (void)::fcntl(file.get(), F_SETFL, ::fcntl(file.get(), F_GETFL) & ~O_NONBLOCK);  // Terminals are waited for.
    return readAll(file.get(), name);
}
