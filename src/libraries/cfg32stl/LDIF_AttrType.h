// The attribute types that the library knows: how the values of each are parsed, compared and printed, and which
// limits apply to them.
#ifndef LDIF_ATTRTYPE_H
#define LDIF_ATTRTYPE_H

#include <string>
#include <string_view>

class LDIF_Value;

// One attribute type. The records are static, and everybody else only points at them. The five functions always
// belong to one syntax; each of enumValues, bitmask, minimum and maximum is read by some of the syntaxes only.
struct _AttrType {
    const char* name;                                                  // null only in the default type
    int (*match)(const LDIF_Value& left, const LDIF_Value& right);     // 0 means equal
    void (*fromStr)(LDIF_Value& value, const std::string& text);       // validates text and fills value
    void (*fromBin)(LDIF_Value& value, const void* data, int length);  // the same from a binary form
    std::string (*toStr)(const LDIF_Value& value);                     // the text form
    void* (*toBin)(const LDIF_Value& value, int& length);              // the value's own block, not a copy
    const char* const* enumValues;                                     // ended by a null; or null
    unsigned int bitmask;                                              // the bits that a value may set
    int minimum;                                                       // of a number, or of a length in bytes;
    int maximum;                                                       //   0 means no limit
    bool isSingle;                                                     // declared and reported, never enforced

    // Negative, 0 or positive as name sorts before, with or after other, without regard to case.
    int compare(const char* other) const;
    bool operator<(const _AttrType& other) const { return compare(other.name) < 0; }
};

// The table: the configuration schema of the server, compiled in. The named types in any order, then the default type,
// whose name is null. Sorted where it lies, at the first look-up.
extern _AttrType _attrMapArray[];

// The type of that name, found without regard to case; for null, and for a name that is not known, the default type,
// which takes any text. Never null, and the same pointer each time. Any number of threads may look up at once.
const _AttrType* getAttrType(const char* name);
const _AttrType* getAttrType(std::string_view name);

#endif
