#include "LDIF_Values.h"

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "platform.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr char addition[] = "System error in LDIF_Values::operator +=";
constexpr char removal[] = "System error in LDIF_Values::operator -=";

// What a failed operator on a list knows: the list's type and the text of the value.
auto fieldsOf(const LDIF_Values& list, const std::string& text)
{
    return [&](LDIF_Exception& failure) {
        failure.attrType = list.attrType;
        failure.value = text;
    };
}

auto fieldsOf(const LDIF_Values& list, const LDIF_Value& value)
{
    return [&](LDIF_Exception& failure) { fieldsOf(list, value.str())(failure); };
}

// The same for a whole list of values: a system error names the first of them.
auto fieldsOf(const LDIF_Values& list, const LDIF_Values& values)
{
    return [&](LDIF_Exception& failure) {
        failure.attrType = list.attrType;
        if (failure.nested == nullptr && !values.empty())
            failure.value = values.front().str();
    };
}

}  // namespace

LDIF_Values::LDIF_Values(const std::string& name)
    : attrName(name), attrType(getAttrType(name.empty() ? nullptr : name.c_str()))
{}

LDIF_Values& LDIF_Values::operator=(const LDIF_Values& other)
{
    if (this == &other)
        return *this;
    wrapping("System error in LDIF_Values::operator =", fieldsOf(*this, other), [&] {
        clear();
        index = LDIF_HashIndex();
        attrName = other.attrName;
        attrType = other.attrType;
        *this += other;
    });
    return *this;
}

void LDIF_Values::appendTo(std::string& out) const
{
    const std::string start = attrName + ": ";
    const bool isAtHand = &syntaxOf(*attrType) != &syntax::foreign;
    for (const LDIF_Value& value : *this) {
        out += start;
        if (isAtHand)
            out += value.stringValue;
        else
            out += value.str();
        out += '\n';
    }
}

LDIF_Values& LDIF_Values::operator+=(const std::string& text)
{
    wrapping(addition, fieldsOf(*this, text), [&] { addNew(LDIF_Value(attrType, text)); });
    return *this;
}

void LDIF_Values::addNew(LDIF_Value&& value)
{
    if (!contains(value))
        push_back(std::move(value));
}

LDIF_Values& LDIF_Values::operator+=(const LDIF_Value& value)
{
    wrapping(addition, fieldsOf(*this, value), [&] { *this += value.str(); });
    return *this;
}

LDIF_Values& LDIF_Values::operator+=(const LDIF_Values& other)
{
    if (this == &other)
        return *this;
    wrapping(addition, fieldsOf(*this, other), [&] {
        for (const LDIF_Value& value : other)
            *this += value.str();
    });
    return *this;
}

LDIF_Values& LDIF_Values::operator+=(LDIF_Values&& other)
{
    wrapping(addition, fieldsOf(*this, other), [&] {
        for (LDIF_Value& value : other)
            takeOver(std::move(value));
    });
    return *this;
}

// A value of another type is validated through its text.
void LDIF_Values::takeOver(LDIF_Value&& value)
{
    if (value.attrType == attrType)
        wrapping(addition, fieldsOf(*this, value), [&] { addNew(std::move(value)); });
    else
        *this += value.str();
}

LDIF_Values& LDIF_Values::operator-=(const std::string& text)
{
    wrapping(removal, fieldsOf(*this, text), [&] {
        const auto found = find(text) - data();
        if (static_cast<size_type>(found) == size())
            return;
        if (static_cast<size_type>(found) < index.size())
            index.erase(static_cast<size_type>(found));
        erase(begin() + found);
    });
    return *this;
}

LDIF_Values& LDIF_Values::operator-=(const std::vector<std::string>& texts)
{
    if (texts.size() == 1)
        return *this -= texts.front();  // which keeps the index
    std::vector<bool> isGone(size());
    size_type left = size();
    for (auto text = texts.begin(); text != texts.end() && left > 0; ++text) {
        try {
            const auto found = static_cast<size_type>(find(*text) - data());
            if (found == size() || isGone[found])
                continue;
            isGone[found] = true;
            --left;
        } catch (...) {
            removeMarked(isGone);
            wrapAndThrow(removal, fieldsOf(*this, *text));
        }
    }
    removeMarked(isGone);
    return *this;
}

void LDIF_Values::removeMarked(const std::vector<bool>& isGone) noexcept
{
    const auto isMarked = [&](const LDIF_Value& value) { return isGone[static_cast<size_type>(&value - data())]; };
    const auto left = std::remove_if(begin(), end(), isMarked);
    if (left == end())
        return;
    index = LDIF_HashIndex();
    erase(left, end());
}

const LDIF_Value* LDIF_Values::find(const std::string& text) const
{
    return empty() ? data() : findEqual(LDIF_Value(attrType, text));
}

LDIF_Value* LDIF_Values::find(const std::string& text)
{
    return const_cast<LDIF_Value*>(static_cast<const LDIF_Values*>(this)->find(text));
}

const LDIF_Value* LDIF_Values::findEqual(const LDIF_Value& value) const
{
    constexpr size_type longList = 32;
    const LDIF_Syntax& family = syntaxOf(*value.attrType);
    const auto hash = size() >= longList && family.hash != nullptr ? family.hash(value) : std::nullopt;
    size_type start = 0;  // those before it are not equal
    if (hash.has_value()) {
        updateIndex(family);
        const auto found = index.find(*hash, [&](std::size_t at) { return (*this)[at].compare(value) == 0; });
        if (found != LDIF_HashIndex::npos)
            return data() + found;
        start = index.size();
    }
    return std::find_if(data() + start, data() + size(),
                        [&](const LDIF_Value& each) { return each.compare(value) == 0; });
}

// Takes in the values that have come since the last call, up to one that has no hash.
void LDIF_Values::updateIndex(const LDIF_Syntax& family) const
{
    const std::size_t present = family.foldsCase ? caseFolding() : 0;
    if (folding != present)
        index = LDIF_HashIndex();
    folding = present;
    while (index.size() < size()) {
        const auto hash = family.hash((*this)[index.size()]);
        if (!hash.has_value())
            break;
        index.add(*hash, index.size());
    }
}
