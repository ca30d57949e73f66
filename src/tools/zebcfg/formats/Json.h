// Entries and failures as JSON texts.
#ifndef ZEBCFG_JSON_H
#define ZEBCFG_JSON_H

#include "base/Entry.h"

#include <string>
#include <vector>

struct AttributeType;
struct Failure;

std::string toJson(const Failure& failure, bool withDump);
std::string noteToJson(const std::string& text);
std::string diffToJson(const std::string& diff);
std::string changeToJson(bool isChanged, const std::string& diff);
// An array of {"dn": ..., "attributes": {NAME: [VALUE...]}}, with passwords masked.
std::string toJson(const std::vector<Entry>& entries);
std::string toJson(const std::vector<std::string>& values);
std::string toJson(const std::vector<AttributeType>& types);

#endif
