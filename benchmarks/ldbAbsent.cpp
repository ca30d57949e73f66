// In place of ldb.cpp where ldb is not installed.
#include "references.h"

std::unique_ptr<Database> makeLdb(const std::string&, const Request&, const char*)
{
    return nullptr;
}

std::string ldbVersion()
{
    return "none";
}
