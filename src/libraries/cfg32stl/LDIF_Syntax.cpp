#include "LDIF_Syntax.h"

const LDIF_Syntax& syntaxOf(const _AttrType& type) noexcept
{
    using namespace syntax;
    for (const LDIF_Syntax* each : {&ces, &cis, &integer, &enumerated, &dn, &pw, &mask}) {
        if (type.match == each->compare && type.fromStr == each->fromStr && type.toStr == each->toStr)
            return *each;
    }
    return foreign;
}
