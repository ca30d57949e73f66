#include "files/Descriptor.h"

#include "base/Failure.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <ldap.h>
#include <unistd.h>

Descriptor::~Descriptor()
{
    close();
}

void Descriptor::close() noexcept
{
    if (number >= 0)
        ::close(number);
    number = -1;
}

std::string Descriptor::name() const
{
    return "/proc/self/fd/" + std::to_string(number);
}

int openForReading(const std::string& name) noexcept
{
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int file = ::open(name.c_str(), flags | O_NOATIME);
    return file < 0 && errno == EPERM ? ::open(name.c_str(), flags) : file;
}

std::string readAll(int file, const std::string& shownName)
{
    std::string text;
    std::array<char, 65536> buffer = {};
    for (;;) {
        const ssize_t count = ::read(file, buffer.data(), buffer.size());
        if (count == 0)
            return text;
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot read", shownName);
        text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

std::string readFile(const std::string& name, const std::string& shownName)
{
    const Descriptor file(openForReading(name));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot open", shownName);
    return readAll(file.get(), shownName);
}

void writeAll(int file, const std::string& text, const std::string& shownName)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(file, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot write " + shownName + ", and nothing is changed");
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void overwriteFile(const std::string& name, const std::string& text)
{
    const Descriptor file(::open(name.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot write " + name);
    writeAll(file.get(), text, name);
}
