#include "check/Place.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "formats/ConfigText.h"
#include "library/Dn.h"

// Where the attribute stands now; where it does not, where its entry begins.
void addPlace(Failure& failure, const std::string& text, const std::string& shownName)
{
    if (failure.file.empty())
        failure.file = shownName;
    if (failure.file != shownName || failure.fileLine != 0 || failure.entry.empty())
        return;
    const DnSpeller spelled;
    const std::string dn = spelled.orNothing(failure.entry);
    int entry = 0;  // the number of the last dn line with that DN
    for (const ConfigLine& line : linesOf(text)) {
        if (line.isDn && isSameName(spelled.orNothing(std::string(line.value)), dn))
            entry = line.first;
        if (line.entry == 0 || line.entry != entry)
            continue;
        if (failure.fileLine == 0)
            failure.fileLine = line.first;
        if (!isSameName(line.name, failure.attribute))
            continue;
        failure.fileLine = line.first;
        return;
    }
}
