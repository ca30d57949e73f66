// Writes the attribute types that the library knows as rows of the tool's own table, so that the tool itself sees the
// public header only.
#include "LDIF_AttrTable.h"
#include "LDIF_Syntax.h"

#include <fstream>
#include <iostream>

namespace {

const char* syntaxOf(const _AttrType& type)
{
    if (type.fromStr == syntax::pw.fromStr)
        return "password";
    if (type.fromStr == syntax::dn.fromStr)
        return "dn";
    if (type.fromStr == syntax::mask.fromStr)
        return "bits";
    if (type.fromStr == syntax::integer.fromStr)
        return "number";
    if (type.fromStr == syntax::enumerated.fromStr)
        return "word";
    return "text";
}

void writeRow(std::ostream& out, const _AttrType& type)
{
    out << "{\"" << type.name << "\", Syntax::" << syntaxOf(type) << ", " << type.minimum << ", " << type.maximum
        << ", " << type.bitmask << "U, " << (type.isSingle ? "true" : "false") << ", {";
    const bool isEnforced = type.fromStr == syntax::enumerated.fromStr;
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
