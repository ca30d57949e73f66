#include "base/Attributes.h"

#include "base/Answers.h"
#include "base/Text.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace {

bool isBefore(std::string_view left, std::string_view right)
{
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char a, char b) { return lowered(a) < lowered(b); });
}

std::vector<AttributeType> readRows()
{
    std::vector<AttributeType> rows = {
#include "attributeRows.inc"
    };
    std::sort(rows.begin(), rows.end(),
              [](const AttributeType& left, const AttributeType& right) { return isBefore(left.name, right.name); });
    return rows;
}

std::string describeLength(const AttributeType& type, const std::string& noun)
{
    if (type.minimum == 0 && type.maximum == 0)
        return noun;
    const std::string most = std::to_string(type.maximum) + " bytes";
    return type.minimum == 0 ? noun + " of at most " + most
                             : noun + " of " + std::to_string(type.minimum) + " to " + most;
}

// Without regard to case.
struct HashOfName {
    std::size_t operator()(std::string_view name) const
    {
        return std::accumulate(name.begin(), name.end(), name.size(), [](std::size_t hash, char letter) {
            return hash * 31 + static_cast<unsigned char>(lowered(letter));
        });
    }
};

struct EqualNames {
    bool operator()(std::string_view left, std::string_view right) const { return isSameName(left, right); }
};

// The number of letters that have to be put in, taken out or exchanged to make one word of the other.
std::size_t distance(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : left) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t exchanged = diagonal + (lowered(letter) == lowered(right[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

const std::vector<AttributeType>& attributeTypes()
{
    static const std::vector<AttributeType> rows = readRows();
    return rows;
}

bool isSameName(std::string_view left, std::string_view right)
{
    return left.size() == right.size() &&
           (left == right || std::equal(left.begin(), left.end(), right.begin(),
                                        [](char a, char b) { return lowered(a) == lowered(b); }));
}

const AttributeType* findAttributeType(std::string_view name)
{
    static const auto rowsByName = [] {
        std::unordered_map<std::string_view, const AttributeType*, HashOfName, EqualNames> rows;
        for (const AttributeType& row : attributeTypes())
            rows.emplace(row.name, &row);
        return rows;
    }();
    const auto found = rowsByName.find(name);
    return found != rowsByName.end() ? found->second : nullptr;
}

bool isPassword(std::string_view name)
{
    const AttributeType* const type = findAttributeType(name);
    return type != nullptr && type->syntax == Syntax::password;
}

std::string describeValues(const AttributeType& type)
{
    switch (type.syntax) {
    case Syntax::number:
        return type.minimum == type.maximum
                   ? "the number " + std::to_string(type.minimum)
                   : "a number from " + std::to_string(type.minimum) + " to " + std::to_string(type.maximum);
    case Syntax::word:
        return "one of " +
               std::accumulate(std::next(type.words.begin()), type.words.end(), type.words.front(),
                               [](const std::string& list, const std::string& word) { return list + ", " + word; });
    case Syntax::bits:
        return "a number made of bits of " + std::to_string(type.bits);
    case Syntax::dn:
        return "a DN";
    case Syntax::password:
        return describeLength(type, "a password");
    default:
        return describeLength(type, "a text");
    }
}

std::string nearest(std::string_view word, const std::vector<std::string>& candidates)
{
    std::size_t best = std::min(word.size() / 3, mostSlips) + 1;
    std::string found;
    for (const std::string& candidate : candidates) {
        const std::size_t length = candidate.size();
        if (std::max(length, word.size()) - std::min(length, word.size()) >= best)
            continue;  // Each letter more is a step.
        const std::size_t steps = distance(word, candidate);
        if (steps < best) {
            best = steps;
            found = candidate;
        }
    }
    return found;
}

std::string attributeHint(std::string_view name)
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> known;
        for (const AttributeType& type : attributeTypes())
            known.push_back(type.name);
        return known;
    }();
    static Answers<std::string> answers([](std::string_view asked) { return nearest(asked, names); });
    const std::string found = findAttributeType(name) == nullptr ? answers.of(name) : "";
    return found.empty() ? "" : " (did you mean " + found + "?)";
}
