#include "base/Failure.h"

#include "base/Text.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr int otherCode = 80;

}  // namespace

Failure::Failure(int resultCode, std::string message, std::string shownFile)
    : code(resultCode), text(std::move(message)), file(std::move(shownFile))
{}

int Failure::exitStatus() const noexcept
{
    if (code == 0)
        return 1;
    return code > 0 && code <= 255 ? code : otherCode;
}

std::string Failure::codes() const
{
    if (code == 0)
        return {};
    return std::to_string(code) + (extended != 0 && extended != code ? ", " + std::to_string(extended) : "");
}

std::string Failure::line() const
{
    std::string result = attribute.empty() ? text : attribute + ": " + text;
    if (code != 0)
        result += " (" + codes() + ')';
    if (!file.empty())
        result += " at " + file + (fileLine > 0 ? ':' + std::to_string(fileLine) : "");
    return visible(result);
}

Failure systemFailure(int resultCode, const std::string& message, const std::string& shownFile)
{
    const int error = errno;
    const char* const reason = error == ETXTBSY ? "another program has it open" : std::strerror(error);
    return {resultCode, message + ": " + reason, shownFile};
}
