#include "formats/Json.h"

#include "base/Attributes.h"
#include "base/Encoding.h"
#include "base/Entry.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
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

// DEL and C1 stand in texts only. JSON would have them as they are, but they are not for a terminal.
std::string withoutControls(const std::string& json)
{
    std::string escaped;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const auto byte = static_cast<unsigned char>(json[i]);
        const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : '\0');
        if (byte == 0xc2 && next >= 0x80 && next < 0xa0)
            escaped += "\\u00" + hexOf(static_cast<unsigned char>(json[++i]));
        else
            escaped += byte == 0x7f ? "\\u007f" : std::string(1, json[i]);
    }
    return escaped;
}

}  // namespace

// Bytes that are no UTF-8 become replacement characters.
std::string textOf(const JsonObject& object, int indentation)
{
    return withoutControls(inUtf8(object).dump(indentation, ' ', false, JsonObject::error_handler_t::replace));
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
    addText("entry", shownDn(failure.entry));
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
            JsonObject& values = attributes[shownLine(attribute.name)] = JsonObject::array();
            for (const std::string& value : attribute.values)
                values.push_back(shownValue(attribute.name, value));
        }
        list.push_back({{"dn", shownDn(entry.dn)}, {"attributes", attributes}});
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
