#include "base/Value.h"

#include "base/Attributes.h"
#include "base/Text.h"

#include <charconv>
#include <limits>
#include <optional>

namespace {

// One that is too large counts as the largest.
std::optional<long long> numberOf(const std::string& text)
{
    const bool hasPlus = !text.empty() && text.front() == '+';
    const char* const begin = text.data() + (hasPlus ? 1 : 0);
    const char* const end = text.data() + text.size();
    long long number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (stop != end || error == std::errc::invalid_argument || (hasPlus && *begin == '-'))
        return std::nullopt;
    if (error == std::errc::result_out_of_range)
        return *begin == '-' ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
    return number;
}

}  // namespace

bool isWholeNumber(const std::string& text)
{
    return numberOf(text).has_value();
}

std::string comparableText(const AttributeType* type, const std::string& value)
{
    return type != nullptr && type->syntax == Syntax::password ? value : lowerCase(value);
}

int compareValues(const AttributeType* type, const std::string& left, const std::string& right)
{
    const bool isNumber = type != nullptr && (type->syntax == Syntax::number || type->syntax == Syntax::bits);
    const auto one = isNumber ? numberOf(left) : std::nullopt;
    const auto other = isNumber ? numberOf(right) : std::nullopt;
    if (one && other)
        return *one < *other ? -1 : static_cast<int>(*one > *other);
    return comparableText(type, left).compare(comparableText(type, right));
}
