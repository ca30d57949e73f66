#include "Attributes.h"
#include "Failure.h"
#include "Json.h"
#include "Reading.h"

#include <iostream>

int runGet(const Call& call)
{
    Reading reading(call);
    const std::string& name = call.operands()[1];
    const auto found = reading.session().search(call.operands()[0], LDAP_SCOPE_BASE, name + "=*", {name});
    if (found.empty()) {
        Failure failure(LDAP_NO_SUCH_ATTRIBUTE, "the entry has no such attribute" + attributeHint(name),
                        reading.live().shownName());
        failure.attribute = name;
        throw failure;
    }
    std::vector<std::string> values;
    for (const std::string& value : found.front().attributes.front().values)
        values.push_back(shownValue(name, value));
    if (call.isJson())
        std::cout << toJson(values) << '\n';
    for (const std::string& value : call.isJson() ? std::vector<std::string>() : values)
        std::cout << value << '\n';
    return 0;
}
