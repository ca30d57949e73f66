// The records of LDIF, RFC 2849.
#ifndef ZEBCFG_LDIFREADER_H
#define ZEBCFG_LDIFREADER_H

#include "formats/LdifLines.h"
#include "formats/LdifRecord.h"

#include <string>

// Reads records from the first to the last. Includes, values from URLs and controls are refused.
class LdifReader {
public:
    // shown is what messages call the text. Throws Failure for a text that begins with a byte order mark.
    LdifReader(std::string ldif, std::string shown);

    // The next record into record, false at the end. A record without changetype is taken for type. Throws Failure
    // with the line at fault; the record after it can be read then.
    bool next(LdifRecord& record, LdifRecord::Type type);

    // The text of the record that was read last.
    std::string record() const { return lines.record(); }

private:
    LdifLines lines;
};

#endif
