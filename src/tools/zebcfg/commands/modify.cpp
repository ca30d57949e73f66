#include "LdifInput.h"

int runModify(const Call& call)
{
    return applyLdif(call, call.has("add") ? LdifRecord::add : LdifRecord::modify);
}
