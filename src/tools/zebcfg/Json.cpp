#include "Json.h"

#include "Failure.h"

#include <nlohmann/json.hpp>

namespace {

using Object = nlohmann::ordered_json;

// Bytes that are no UTF-8 become replacement characters.
std::string textOf(const Object& object, int indentation)
{
    return object.dump(indentation, ' ', false, Object::error_handler_t::replace);
}

}  // namespace

std::string toJson(const Failure& failure, bool withDump)
{
    Object object = {{"error", failure.line()}, {"code", failure.code}};
    if (failure.extended != 0)
        object["extended"] = failure.extended;
    const auto addText = [&](const char* name, const std::string& text) {
        if (!text.empty())
            object[name] = text;
    };
    addText("text", failure.text);
    addText("attribute", failure.attribute);
    addText("entry", failure.entry);
    addText("value", failure.value);
    addText("file", failure.file);
    if (failure.fileLine != 0)
        object["line"] = failure.fileLine;
    addText("dump", withDump ? failure.dump : "");
    return textOf(object, -1);
}

std::string toJson(const std::vector<Entry>& entries)
{
    Object list = Object::array();
    for (const Entry& entry : entries) {
        Object attributes = Object::object();
        for (const Attribute& attribute : entry.attributes) {
            Object& values = attributes[attribute.name] = Object::array();
            for (const std::string& value : attribute.values)
                values.push_back(shownValue(attribute.name, value));
        }
        list.push_back({{"dn", entry.dn}, {"attributes", attributes}});
    }
    return textOf(list, 2);
}

std::string toJson(const std::vector<std::string>& values)
{
    return textOf(Object(values), 2);
}
