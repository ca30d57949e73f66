#include "cli/Call.h"
#include "update/Update.h"

int runDelete(const Call& call)
{
    update(call.target(), [&](Changes& file) {
        for (const std::string& dn : call.operands())
            file.erase(dn, call.has("recursive"));
    });
    return 0;
}
