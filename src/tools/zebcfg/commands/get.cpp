#include "Attributes.h"
#include "Failure.h"
#include "Json.h"
#include "Reading.h"

#include <iostream>

int runGet(const Call& call)
{
    Reading reading(call);
    const std::string& name = call.operands()[1];
    std::vector<std::string> values = reading.session().values(call.operands()[0], name);
    if (values.empty()) {
        Failure failure(LDAP_NO_SUCH_ATTRIBUTE, "the entry has no such attribute" + attributeHint(name),
                        reading.live().shownName());
        failure.attribute = name;
        throw failure;
    }
    for (std::string& value : values)
        value = shownValue(name, value);
    if (call.isJson())
        std::cout << toJson(values) << '\n';
    for (const std::string& value : call.isJson() ? std::vector<std::string>() : values)
        std::cout << value << '\n';
    return 0;
}
