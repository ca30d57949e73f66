#include "Json.h"

#include "Attributes.h"
#include "Check.h"
#include "Failure.h"
#include "Outline.h"

#include <nlohmann/json.hpp>

namespace {

using Object = nlohmann::ordered_json;

// Bytes that are no UTF-8 become replacement characters.
std::string textOf(const Object& object, int indentation)
{
    return object.dump(indentation, ' ', false, Object::error_handler_t::replace);
}

const char* nameOf(Syntax syntax)
{
    constexpr const char* names[] = {"text", "number", "word", "bits", "dn", "password"};
    return names[static_cast<int>(syntax)];
}

Object objectOf(const AttributeType& type)
{
    Object object = {{"name", type.name}, {"syntax", nameOf(type.syntax)}, {"single", type.isSingle}};
    if (type.minimum != 0 || type.maximum != 0)
        object.update({{"minimum", type.minimum}, {"maximum", type.maximum}});
    if (type.bits != 0)
        object["bits"] = type.bits;
    if (!type.words.empty())
        object["words"] = type.words;
    return object;
}

// The node at place, which moves behind the last one below it.
Object treeOf(const std::vector<Node>& nodes, std::size_t& place)
{
    const Node& node = nodes[place++];
    Object children = Object::array();
    while (place < nodes.size() && nodes[place].depth > node.depth)
        children.push_back(treeOf(nodes, place));
    return {{"dn", node.dn}, {"children", children}};
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

std::string noteToJson(const std::string& text)
{
    return textOf({{"note", text}}, -1);
}

std::string diffToJson(const std::string& diff)
{
    return textOf({{"diff", diff}}, 2);
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

std::string toJson(const std::vector<AttributeType>& types)
{
    Object list = Object::array();
    for (const AttributeType& type : types)
        list.push_back(objectOf(type));
    return textOf(list, 2);
}

std::string toJson(const std::vector<Finding>& findings, const std::string& shownName)
{
    Object list = Object::array();
    for (const Finding& finding : findings) {
        Object object = {{"file", shownName}, {"line", finding.line}, {"severity", nameOf(finding.severity)}};
        object.update({{"text", finding.text}, {"code", finding.code}, {"extended", finding.extended}});
        object.update({{"attribute", finding.attribute}, {"advice", finding.advice}});
        if (const AttributeType* const type = findAttributeType(finding.attribute))
            object["allowed"] = objectOf(*type);
        list.push_back(object);
    }
    return textOf(list, 2);
}

std::string toJson(const std::vector<Node>& nodes)
{
    Object list = Object::array();
    for (std::size_t place = 0; place < nodes.size();)
        list.push_back(treeOf(nodes, place));
    return textOf(list, 2);
}
