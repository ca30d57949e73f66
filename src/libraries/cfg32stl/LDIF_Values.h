// The values of one attribute.
#ifndef LDIF_VALUES_H
#define LDIF_VALUES_H

#include "LDIF_HashIndex.h"
#include "LDIF_Util.h"
#include "LDIF_Value.h"

#include <string>
#include <vector>

struct LDIF_Syntax;

// The values of one attribute in the order in which they came, no two equal under the attribute's syntax. Values go in
// and out by the operators only. Where an operation refuses a text, it throws LDIF_Exception with attrType and value. A
// list that has been moved from is good for assignment only.
class LDIF_Values : public std::vector<LDIF_Value> {
public:
    std::string attrName;       // as written
    const _AttrType* attrType;  // of all values; static

    // An empty list of the type of that name.
    explicit LDIF_Values(const std::string& name);
    LDIF_Values(const LDIF_Values& other) = default;
    LDIF_Values(LDIF_Values&& other) noexcept = default;
    ~LDIF_Values() = default;
    // Validates each value again, through its text. After a failure the list holds those before the failing one.
    LDIF_Values& operator=(const LDIF_Values& other);
    LDIF_Values& operator=(LDIF_Values&& other) noexcept = default;

    // A line "name: value" for each value.
    std::string str() const { return textOf(*this); }
    void appendTo(std::string& out) const;

    // Adds a value, unless an equal one is there. After a failure the list is unchanged.
    LDIF_Values& operator+=(const std::string& text);
    LDIF_Values& operator+=(const LDIF_Value& value);
    // Adds all values of other. After a failure those before the failing one are in the list.
    LDIF_Values& operator+=(const LDIF_Values& other);
    // The same, but values of this list's type move in as they are. What is left of other is no list any more.
    LDIF_Values& operator+=(LDIF_Values&& other);
    // Removes the value equal to text, if there is one. An empty list takes any text.
    LDIF_Values& operator-=(const std::string& text);
    // Removes the values equal to these texts, one after the other up to the one that leaves nothing, but moves the
    // others only once. After a failure those before the failing one are gone.
    LDIF_Values& operator-=(const std::vector<std::string>& texts);

    // The value equal to text, or the end: data() + size(). An empty list takes any text.
    const LDIF_Value* find(const std::string& text) const;
    LDIF_Value* find(const std::string& text);
    // Whether a value equal to this one, of the same type, is there.
    bool contains(const LDIF_Value& value) const { return findEqual(value) != data() + size(); }

private:
    void addNew(LDIF_Value&& value);
    void takeOver(LDIF_Value&& value);
    void removeMarked(const std::vector<bool>& isGone) noexcept;
    const LDIF_Value* findEqual(const LDIF_Value& value) const;
    void updateIndex(const LDIF_Syntax& family) const;

    mutable LDIF_HashIndex index;     // of the first values of a long list, as many as it holds
    mutable std::size_t folding = 0;  // of the locale under which their hashes were made
};

#endif
