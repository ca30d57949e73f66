// The registry of a test: a branch of the user's, without keys at first.
#include "testSystem.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* branch = "Software\\zebldapcfg-test";

HKEY ownBranch()
{
    HKEY key = nullptr;
    const LSTATUS removed = RegDeleteTreeA(HKEY_CURRENT_USER, branch);
    const bool isGone = removed == ERROR_SUCCESS || removed == ERROR_FILE_NOT_FOUND;
    EXPECT_TRUE(isGone);
    EXPECT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, branch, &key), 0);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key), 0);
    return key;
}

const HKEY own = ownBranch();

}  // namespace

void setHome(const std::string& home, bool hasEnd)
{
    HKEY key = nullptr;
    const std::wstring text(home.begin(), home.end());
    const auto size = static_cast<DWORD>(sizeof(wchar_t) * (text.size() + (hasEnd ? 1 : 0)));
    EXPECT_EQ(RegCreateKeyA(own, "SOFTWARE\\ZEB\\LDAP\\Client", &key), 0);
    EXPECT_EQ(RegSetValueExW(key, L"LDAPHome", 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size), 0);
    RegCloseKey(key);
}
