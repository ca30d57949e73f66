#include "check/Finding.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "formats/JsonObject.h"

#include <algorithm>
#include <utility>

namespace {

const char* nameOf(Severity severity)
{
    constexpr const char* names[] = {"note", "warning", "error"};
    return names[static_cast<int>(severity)];
}

}  // namespace

Finding::Finding(Severity how, int where, std::string what) : severity(how), line(where), text(std::move(what)) {}

Finding& Finding::coded(int resultCode, int extendedCode)
{
    code = resultCode;
    extended = extendedCode;
    return *this;
}

Finding& Finding::advise(std::string what)
{
    advice = std::move(what);
    return *this;
}

Finding& Finding::about(std::string attributeName)
{
    attribute = std::move(attributeName);
    return *this;
}

bool hasErrors(const std::vector<Finding>& findings)
{
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::error; });
}

std::string toLine(const Finding& finding, const std::string& shownName)
{
    Failure codes(finding.code, "");
    codes.extended = finding.extended;
    std::string line = shownName + (finding.line > 0 ? ':' + std::to_string(finding.line) : "") + ": " +
                       nameOf(finding.severity) + ": " + finding.text;
    if (finding.code != 0)
        line += " (" + codes.codes() + ')';
    return visible(finding.advice.empty() ? line : line + "; " + finding.advice);
}

std::string toJson(const std::vector<Finding>& findings, const std::string& shownName)
{
    JsonObject list = JsonObject::array();
    for (const Finding& finding : findings) {
        JsonObject object = {{"file", shownName}, {"line", finding.line}, {"severity", nameOf(finding.severity)}};
        object.update({{"text", finding.text}, {"code", finding.code}, {"extended", finding.extended}});
        object.update({{"attribute", finding.attribute}, {"advice", finding.advice}});
        if (const AttributeType* const type = findAttributeType(finding.attribute))
            object["allowed"] = objectOf(*type);
        list.push_back(object);
    }
    return textOf(list, 2);
}
