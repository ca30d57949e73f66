// The header of the LDAP library, with one spelling for its names.
#ifndef LDAPNAMES_H
#define LDAPNAMES_H

#include <ldap.h>

#endif
