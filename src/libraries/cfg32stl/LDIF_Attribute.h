// The attributes of an entry.
#ifndef LDIF_ATTRIBUTE_H
#define LDIF_ATTRIBUTE_H

#include "LDIF_Comment.h"
#include "LDIF_Util.h"
#include "LDIF_Values.h"
#include "cisString.h"

#include <cstddef>
#include <string>
#include <vector>

// An attribute with its values and the comment lines that stand before it in the file. Attributes compare by name
// alone, without regard to case. A plain value.
class LDIF_Attribute final {
public:
    cisString name;  // as first written
    LDIF_Comment comment;
    LDIF_Values values;

    // An empty text makes an attribute without values.
    LDIF_Attribute(const std::string& attributeName, const std::string& text);
    // The line is of type attribute, and its value is added even if it is empty. Throws LDIF_Exception for a value
    // that the syntax refuses, and (80) for another type of line.
    LDIF_Attribute(const LDIF_Line& line, LDIF_Comment attributeComment);

    // The comment, then a line for each value.
    virtual std::string str() const { return textOf(*this); }
    void appendTo(std::string& out) const;

    // Negative, 0 or positive as this name sorts before, with or after the other.
    int compare(const LDIF_Attribute& other) const { return name.compare(other.name); }
    int compare(const std::string& otherName) const { return name.compare(otherName); }
    int compare(const char* otherName) const { return name.compare(otherName); }
    bool operator==(const LDIF_Attribute& other) const { return compare(other) == 0; }
    bool operator==(const std::string& otherName) const { return compare(otherName) == 0; }
    bool operator==(const char* otherName) const { return compare(otherName) == 0; }
    bool operator<(const LDIF_Attribute& other) const { return compare(other) < 0; }

    // Adds comment and values of an attribute of the same name; any other is ignored.
    LDIF_Attribute& operator+=(const LDIF_Attribute& other);
    LDIF_Attribute& operator+=(LDIF_Attribute&& other);
    LDIF_Attribute& operator+=(const LDIF_Comment& lines);
    // Throws LDIF_Exception for a value that the syntax refuses.
    LDIF_Attribute& operator+=(const std::string& value);
    // Adds the value of a line of this name, and moves the lines that stand before it to the comment. After a failure
    // nothing has changed.
    void add(const LDIF_Line& line, LDIF_Comment& before);
};

// The attributes of one entry in ascending order of name, no two of the same name.
class LDIF_Attributes : public std::vector<LDIF_Attribute> {
public:
    std::string str() const { return textOf(*this); }
    void appendTo(std::string& out) const;

    // Adds an attribute in its place, or its comment and values to the one that has its name. What is moved in is not
    // validated again; after a failure the list holds what came before the value that failed.
    LDIF_Attributes& operator+=(const LDIF_Attribute& attribute);
    LDIF_Attributes& operator+=(LDIF_Attribute&& attribute);
    // Adds the value of a line of type attribute, and moves the lines that stand before it to the attribute's comment.
    // After a failure nothing has changed.
    void add(const LDIF_Line& line, LDIF_Comment& before);
    // Removes the attribute of the same name, if there is one.
    LDIF_Attributes& operator-=(const LDIF_Attribute& attribute);
    LDIF_Attributes& operator+=(const LDIF_Attributes& other);
    LDIF_Attributes& operator+=(LDIF_Attributes&& other);

    // The attribute of that name, or the end: data() + size().
    LDIF_Attribute* find(const cisString& name);
    const LDIF_Attribute* find(const cisString& name) const { return const_cast<LDIF_Attributes*>(this)->find(name); }

private:
    bool isSorted() const;
    iterator placeOf(const std::string& name);

    mutable std::size_t sortedUnder = 0;  // the folding of the locale; 0 where it is not known
};

#endif
