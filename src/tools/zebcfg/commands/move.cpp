#include "cli/Call.h"
#include "update/Update.h"

int runMove(const Call& call)
{
    update(call.target(), [&](Changes& file) { file.move(call.operand(0), call.operand(1), false); });
    return 0;
}
