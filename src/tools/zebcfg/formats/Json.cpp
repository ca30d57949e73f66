#include "formats/Json.h"

#include "base/Attributes.h"
#include "base/Encoding.h"
#include "base/Entry.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "formats/JsonObject.h"

namespace {

const char* nameOf(Syntax syntax)
{
    constexpr const char* names[] = {"text", "number", "word", "bits", "dn", "password"};
    return names[static_cast<int>(syntax)];
}

// The same with all texts and names in UTF-8.
JsonObject inUtf8(const JsonObject& object)
{
    if (object.is_string())
        return toUtf8(object.get<std::string>());
    if (!object.is_structured())
        return object;
    JsonObject result = object.is_array() ? JsonObject::array() : JsonObject::object();
    for (const auto& [key, value] : object.items()) {
        if (object.is_array())
            result.push_back(inUtf8(value));
        else
            result[toUtf8(key)] = inUtf8(value);
    }
    return result;
}

}  // namespace

// Bytes that are no UTF-8 become replacement characters.
std::string textOf(const JsonObject& object, int indentation)
{
    return inUtf8(object).dump(indentation, ' ', false, JsonObject::error_handler_t::replace);
}

JsonObject objectOf(const AttributeType& type)
{
    JsonObject object = {{"name", type.name}, {"syntax", nameOf(type.syntax)}, {"single", type.isSingle}};
    if (type.minimum != 0 || type.maximum != 0)
        object.update({{"minimum", type.minimum}, {"maximum", type.maximum}});
    if (type.bits != 0)
        object["bits"] = type.bits;
    if (!type.words.empty())
        object["words"] = type.words;
    return object;
}

std::string toJson(const Failure& failure, bool withDump)
{
    JsonObject object = {{"error", failure.line()}, {"code", failure.code}};
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

std::string noteToJson(const std::string& text)
{
    return textOf({{"note", text}}, -1);
}

std::string diffToJson(const std::string& diff)
{
    return textOf({{"diff", diff}}, 2);
}

std::string changeToJson(bool isChanged, const std::string& diff)
{
    return textOf({{"changed", isChanged}, {"diff", diff}}, 2);
}

std::string toJson(const std::vector<Entry>& entries)
{
    JsonObject list = JsonObject::array();
    for (const Entry& entry : entries) {
        JsonObject attributes = JsonObject::object();
        for (const Attribute& attribute : entry.attributes) {
            JsonObject& values = attributes[attribute.name] = JsonObject::array();
            for (const std::string& value : attribute.values)
                values.push_back(shownValue(attribute.name, value));
        }
        list.push_back({{"dn", entry.dn}, {"attributes", attributes}});
    }
    return textOf(list, 2);
}

std::string toJson(const std::vector<std::string>& values)
{
    return textOf(JsonObject(values), 2);
}

std::string toJson(const std::vector<AttributeType>& types)
{
    JsonObject list = JsonObject::array();
    for (const AttributeType& type : types)
        list.push_back(objectOf(type));
    return textOf(list, 2);
}
