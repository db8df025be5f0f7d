#pragma once

#include "verdict/facts.h"
#include "verdict/verdict.h"

namespace netvane::verdict {

/// What the link that a cause is about does, in two or three words; empty without a fault.
QString wordOf(Cause cause);

/// The five links Wi-Fi (or cable), router, line, internet and DNS, as they stand under this cause.
std::vector<ChainLink> chainOf(const Facts& facts, Cause cause, Severity severity);

} // namespace netvane::verdict
