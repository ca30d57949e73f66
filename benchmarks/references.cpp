#include "references.h"

#include "measure.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <ldap.h>
#include <ldif.h>
#include <unistd.h>

namespace {

std::size_t countLines(char* record)
{
    std::size_t count = 0;
    while (char* const line = ldif_getline(&record)) {
        berval name = {};
        berval value = {};
        int isCopy = 0;
        require(ldif_parse_line2(line, &name, &value, &isCopy) == 0, "ldif_parse_line2");
        if (isCopy != 0)
            ber_memfree(value.bv_val);
        ++count;
    }
    return count;
}

int openFile(const std::string& file, int flags)
{
    const int descriptor = open(file.c_str(), flags | O_CLOEXEC, 0666);
    if (descriptor < 0)
        fail("open " + file);
    return descriptor;
}

// Repeats a read(2) or write(2), which takes the bytes that are done so far, until all are done.
template <typename Transfer>
void transferAll(int descriptor, std::size_t size, Transfer transfer)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = transfer(done);
        if (count <= 0 && errno != EINTR)
            break;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    close(descriptor);
    require(done == size, "read(2) or write(2) of a whole file");
}

}  // namespace

std::size_t countLdifLines(const std::string& file)
{
    LDIFFP* const input = ldif_open(file.c_str(), "r");
    require(input != nullptr, "ldif_open");
    std::size_t count = 0;
    char* record = nullptr;
    int capacity = 0;
    unsigned long line = 0;
    while (ldif_read_record(input, &line, &record, &capacity) > 0)
        count += countLines(record);
    ber_memfree(record);
    ldif_close(input);
    return count;
}

void readBytes(const std::string& file, std::string& buffer)
{
    const int descriptor = openFile(file, O_RDONLY);
    transferAll(descriptor, buffer.size(),
                [&](std::size_t done) { return read(descriptor, &buffer[done], buffer.size() - done); });
}

void writeBytes(const std::string& file, const std::string& text)
{
    const int descriptor = openFile(file, O_WRONLY | O_CREAT | O_TRUNC);
    transferAll(descriptor, text.size(),
                [&](std::size_t done) { return write(descriptor, &text[done], text.size() - done); });
}
