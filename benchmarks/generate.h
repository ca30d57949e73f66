// The configuration files that the benchmarks read and write.
#ifndef GENERATE_H
#define GENERATE_H

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// How the entries of a file lie, and how they are spelled.
enum class Shape {
    containers,      // containers, each followed by the leaves below it
    flat,            // all leaves below one parent
    missingParents,  // leaves of containers that no entry defines
    rearranged,      // the entries of containers, with attributes in random order, and other blanks in DNs and lines
    beyondAscii,     // as containers, with text in several scripts in DNs, values and comments
    childrenFirst,   // all leaves, then their containers, then the parent of these
    oneAttribute     // one entry with an attribute of many values
};

constexpr Shape allShapes[] = {Shape::containers,  Shape::flat,          Shape::missingParents, Shape::rearranged,
                               Shape::beyondAscii, Shape::childrenFirst, Shape::oneAttribute};

const char* nameOf(Shape shape);

// What to generate. The same request gives the same bytes everywhere.
struct Request {
    Shape shape = Shape::containers;
    std::size_t size = 0;         // the number of leaves, or of the values of the one attribute
    std::size_t containers = 20;  // not for the shapes without containers
};

struct GeneratedEntry {
    std::string dn;
    std::string comment;                                          // the line without its end, or empty
    std::vector<std::pair<std::string, std::string>> attributes;  // name and value, in ascending order of name
    bool isLeaf = false;
};

// The attribute by which about 1 % of the leaves are found, their value in it, and the filter for them. All leaves have
// the attribute.
constexpr char markedAttribute[] = "zeb-slapdServerID";
constexpr char mark[] = "match";
constexpr char markedFilter[] = "(zeb-slapdServerID=match)";

constexpr char suffixDn[] = "cn=Configuration";  // the parent of all; in every shape

// Of the entry suffixDn, and the beginning of its value, behind which one digit stands.
constexpr char revisionAttribute[] = "description";
constexpr char revision[] = "Revision ";

// Hands the entries over one after the other, in the order of the file.
void generateEntries(const Request& request, const std::function<void(const GeneratedEntry&)>& take);

// A value of an entry, and another one of the same length that can take its place.
struct Exchange {
    std::string dn, attribute, value, otherValue;
};

// A file: the head, then the entries. All but rearranged and the order of childrenFirst is as the library itself writes
// it; rearranged is written as containers.
struct Input {
    Request request;
    std::string text;
    std::vector<std::string> leaves;  // their DNs as the library writes them, in the order of the text
    Exchange exchange;                // somewhere in the middle
    std::size_t lines = 0;            // those with a name and a value
    std::size_t marked = 0;           // the number of leaves with the mark
};

Input generateInput(const Request& request);

#endif
