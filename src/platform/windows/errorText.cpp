#include "platform.h"

#include "ldapNames.h"

#include <array>
#include <cstring>
#include <memory>

namespace {

constexpr DWORD neutralLanguage = 0x400;

constexpr std::size_t longestText = 95;  // in bytes
constexpr int codes = 98;                // that have a text

// The texts of the LDAP library, which may give them all in one buffer; the last is that of any other code.
using LdapTexts = std::array<char[longestText + 1], codes + 1>;

LdapTexts makeLdapTexts() noexcept
{
    LdapTexts texts = {};
    for (std::size_t code = 0; code < texts.size(); ++code) {
        const char* const text = ldap_err2stringA(static_cast<ULONG>(code));
        std::strncat(texts[code], text != nullptr ? text : "Unknown error", longestText);
    }
    return texts;
}

}  // namespace

std::string systemErrorText(int number)
{
    char* message = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, static_cast<DWORD>(number),
                   neutralLanguage, reinterpret_cast<char*>(&message), 0, nullptr);
    const std::unique_ptr<char, decltype(&LocalFree)> owner(message, &LocalFree);
    return message != nullptr ? message : "";
}

const char* ldapErrorText(int code) noexcept
{
    static const LdapTexts texts = makeLdapTexts();
    return texts[static_cast<std::size_t>(code >= 0 && code < codes ? code : codes)];
}
