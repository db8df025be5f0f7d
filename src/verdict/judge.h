#pragma once

#include "verdict/evidence.h"
#include "verdict/verdict.h"

namespace netvane::verdict {

/// Who is to blame, by this evidence alone: the same evidence always gives the same verdict. Never
/// fails; without enough evidence the cause is `Unsure`. `since` is left empty. Any thread.
Verdict judge(const Evidence& evidence);

} // namespace netvane::verdict
