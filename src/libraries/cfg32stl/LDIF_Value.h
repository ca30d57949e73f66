// One typed value of an attribute.
#ifndef LDIF_VALUE_H
#define LDIF_VALUE_H

#include "LDIF_DN.h"

#include <memory>
#include <ostream>
#include <string>

struct _AttrType;

// A value that its syntax has accepted. A plain value: copies share nothing but the type. binaryValue is null exactly
// when binaryLength is 0.
class LDIF_Value {
public:
    const _AttrType* attrType;                     // static, never null in a value that was built
    std::string stringValue;                       // the text form, as the file holds it
    unsigned int binaryLength = 0;                 // of binaryValue, in bytes
    std::unique_ptr<unsigned char[]> binaryValue;  // of an integer: 32 bits, signed, in machine order
    std::unique_ptr<LDIF_DN> dnValue;              // of a DN: its parsed form

    // Both throw LDIF_Exception with attrType, attribute and value when the syntax refuses the input.
    LDIF_Value(const _AttrType* type, const char* text);
    LDIF_Value(const _AttrType* type, const std::string& text);  // up to its first NUL
    LDIF_Value(const _AttrType* type, const void* data, int length);
    // Both throw LDIF_Exception for a value that breaks the invariant (80) or when memory is exhausted (90).
    LDIF_Value(const LDIF_Value& other);
    LDIF_Value& operator=(const LDIF_Value& other);
    LDIF_Value(LDIF_Value&& other) noexcept = default;
    LDIF_Value& operator=(LDIF_Value&& other) noexcept = default;
    ~LDIF_Value() = default;

    std::string str() const;
    friend std::ostream& operator<<(std::ostream& out, const LDIF_Value& value) { return out << value.str(); }
    // 0 means equal, by the syntax of this value. A text goes through the syntax first, so one that it refuses throws
    // as the constructor does.
    int compare(const LDIF_Value& other) const;
    int compare(const std::string& text) const;
    bool operator==(const std::string& text) const { return compare(text) == 0; }
};

#endif
