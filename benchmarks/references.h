// What the library is measured beside. All throw std::runtime_error when something fails.
#ifndef REFERENCES_H
#define REFERENCES_H

#include "generate.h"

#include <cstddef>
#include <memory>
#include <string>

// Reads a file with libldap's LDIF reader, keeps nothing, and gives the number of lines with a name and a value.
std::size_t countLdifLines(const std::string& file);

// read(2) of a whole file into a buffer of its size.
void readBytes(const std::string& file, std::string& buffer);

// write(2) of a whole file, which is made or truncated.
void writeBytes(const std::string& file, const std::string& text);

// A database with the entries of a generated file, without the comments.
class Database {
public:
    Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    virtual ~Database() = default;

    // The number of entries found; scope as in <ldap.h>. The entries are given with all their attributes, and released.
    virtual std::size_t search(const std::string& base, int scope, const char* filter) = 0;
};

// A new ldb database in a file, with an index on an attribute unless indexed is null. Null when this program has been
// built without ldb.
std::unique_ptr<Database> makeLdb(const std::string& file, const Request& request, const char* indexed);

// The version of ldb, or "none".
std::string ldbVersion();

#endif
