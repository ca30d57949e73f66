#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "formats/Json.h"
#include "update/Reading.h"

#include <iostream>

#include <unistd.h>

int runGet(const Call& call)
{
    Reading reading(call.target());
    const std::string& name = call.operands()[1];
    std::vector<std::string> values = reading.session().values(call.operands()[0], name);
    if (values.empty()) {
        Failure failure(LDAP_NO_SUCH_ATTRIBUTE, "the entry has no such attribute" + attributeHint(name),
                        reading.live().shownName());
        failure.attribute = shownLine(name);
        throw failure;
    }
    for (std::string& value : values)
        value = shownValue(name, value);
    if (call.isJson()) {
        std::cout << toJson(values) << '\n';
        return 0;
    }
    const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
    for (const std::string& value : values)
        std::cout << (isTerminal ? visible(value) : value) << '\n';
    return 0;
}
