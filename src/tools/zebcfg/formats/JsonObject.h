// JSON objects, for those who write a kind of their own.
#ifndef ZEBCFG_JSONOBJECT_H
#define ZEBCFG_JSONOBJECT_H

#include <string>

#include <nlohmann/json.hpp>

struct AttributeType;

using JsonObject = nlohmann::ordered_json;

// An indentation of -1 is for one line.
std::string textOf(const JsonObject& object, int indentation);
JsonObject objectOf(const AttributeType& type);

#endif
