// The header of the LDAP library, with one spelling for its names.
#ifndef LDAPNAMES_H
#define LDAPNAMES_H

#include <windows.h>

#include <winldap.h>

constexpr int LDAP_INSUFFICIENT_ACCESS = LDAP_INSUFFICIENT_RIGHTS;
constexpr int LDAP_TYPE_OR_VALUE_EXISTS = LDAP_ATTRIBUTE_OR_VALUE_EXISTS;

#endif
