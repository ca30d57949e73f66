#include "PasswordCodec.h"

#include <cstring>
#include <new>

#include "ldapNames.h"
#include "platform.h"

namespace {

// The codec's want of memory is the library's own: no text is at fault.
int checkedStatus(int status)
{
    if (status == PWCODEC_MEMORY)
        throw std::bad_alloc();
    return status;
}

}  // namespace

void ClearTextDeleter::operator()(char* text) const noexcept
{
    wipe(text, std::strlen(text));
    _pwcodec_decode_buffer_free(&text);
}

int decodePassword(const std::string& encoded, ClearText& clear)
{
    std::string workingCopy = encoded;  // The codec may write into it.
    char* text = nullptr;
    const int status = checkedStatus(_pwcodec_decode_buffer(workingCopy.data(), &text));
    if (status == 0)
        clear.reset(text);
    return status;
}

int encodePassword(const std::string& clear, std::string& encoded)
{
    char* text = nullptr;
    const int status = checkedStatus(_pwcodec_encode_buffer(clear.c_str(), &text));
    if (status != 0 || text == nullptr)
        return status != 0 ? status : LDAP_OTHER;
    const auto release = [](char* buffer) { _pwcodec_encode_buffer_free(&buffer); };
    const std::unique_ptr<char, decltype(release)> owner(text, release);
    encoded = text;
    return 0;
}
