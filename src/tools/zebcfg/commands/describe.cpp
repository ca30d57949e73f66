#include "base/Attributes.h"
#include "base/Failure.h"
#include "cli/Call.h"
#include "formats/Json.h"

#include <iomanip>
#include <iostream>

namespace {

std::vector<AttributeType> wantedTypes(const Call& call)
{
    if (call.operands().empty())
        return attributeTypes();
    const std::string& name = call.operands().front();
    const AttributeType* const type = findAttributeType(name);
    if (type != nullptr)
        return {*type};
    throw Failure(LDAP_NO_SUCH_ATTRIBUTE, name + " is not a known attribute; it takes any text" + attributeHint(name));
}

}  // namespace

int runDescribe(const Call& call)
{
    constexpr int nameWidth = 38;
    const auto types = wantedTypes(call);
    if (call.isJson()) {
        std::cout << toJson(types) << '\n';
        return 0;
    }
    for (const AttributeType& type : types)
        std::cout << std::left << std::setw(nameWidth) << type.name << ' ' << describeValues(type)
                  << (type.isSingle ? "; one value" : "; any number of values") << '\n';
    return 0;
}
