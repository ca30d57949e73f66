#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "formats/Json.h"
#include "terminal/StandardStreams.h"
#include "update/Reading.h"

#include <iostream>

namespace {

// None for an entry that is missing where there is a default.
std::vector<std::string> valuesFor(const Call& call, const Session& session)
try {
    return session.values(call.operands()[0], call.operands()[1]);
} catch (const Failure& failure) {
    if (failure.code != LDAP_NO_SUCH_OBJECT || !call.has("default"))
        throw;
    return {};
}

}  // namespace

int runGet(const Call& call)
{
    Reading reading(call.target());
    const std::string& name = call.operands()[1];
    std::vector<std::string> values = valuesFor(call, reading.session());
    if (values.empty() && !call.has("default"))
        throw missingAttribute(name, reading.live().shownName());
    if (values.empty()) {
        call.messages().hintAtName(name);
        values.push_back(call.value("default"));
    }
    for (std::string& value : values)
        value = shownValue(name, value);
    if (call.isJson()) {
        std::cout << toJson(values) << '\n';
        return 0;
    }
    const bool isShown = isTerminal(outputStream);
    for (const std::string& value : values)
        std::cout << (isShown ? visible(value) : value) << '\n';
    return 0;
}
