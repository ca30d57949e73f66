// Writes the attribute types that the library knows as rows of the tool's own table, so that the tool itself sees the
// public header only.
#include "LDIF_AttrType.h"
#include "LDIF_Syntax.h"

#include <fstream>
#include <iostream>

namespace {

// The name of a syntax in the tool.
const char* nameOf(const LDIF_Syntax& family)
{
    if (&family == &syntax::pw)
        return "password";
    if (&family == &syntax::dn)
        return "dn";
    if (&family == &syntax::mask)
        return "bits";
    if (&family == &syntax::integer)
        return "number";
    if (&family == &syntax::enumerated)
        return "word";
    return "text";
}

void writeRow(std::ostream& out, const _AttrType& type)
{
    out << "{\"" << type.name << "\", Syntax::" << nameOf(syntaxOf(type)) << ", " << type.minimum << ", "
        << type.maximum << ", " << type.bitmask << "U, " << (type.isSingle ? "true" : "false") << ", {";
    const bool isEnforced = &syntaxOf(type) == &syntax::enumerated;
    for (const char* const* word = type.enumValues; isEnforced && *word != nullptr; ++word)
        out << '"' << *word << "\", ";
    out << "}},\n";
}

}  // namespace

int main(int argc, char** argv)
{
    std::ofstream out(argc > 1 ? argv[1] : "attributeRows.inc");
    for (const _AttrType* type = _attrMapArray; type->name != nullptr; ++type)
        writeRow(out, *type);
    out.close();
    return out ? 0 : 1;
}
