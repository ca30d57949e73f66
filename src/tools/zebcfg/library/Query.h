// Searches with filters of any form, of which the library answers one test alone.
#ifndef ZEBCFG_QUERY_H
#define ZEBCFG_QUERY_H

#include "base/Entry.h"
#include "base/Filter.h"

#include <string>
#include <vector>

class Session;

struct Query {
    std::string base;
    int scope;
    Filter filter;
    std::vector<std::string> names;       // of the attributes that are wanted; none for all
    std::vector<std::string> namesInUse;  // of attributes that any entry has
};

// In the order of the tree. Throws Failure.
std::vector<Entry> find(const Session& session, const Query& query);

// Leaves attributes with one of the names.
void project(std::vector<Entry>& entries, const std::vector<std::string>& names);

#endif
