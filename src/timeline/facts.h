#pragma once

#include "timeline/chart_maker.h"

namespace netvane::timeline {

/// What a page for a provider and the table of bad hours tell of, but for the network's name.
/// `minutes` are oldest first.
ProviderFacts factsOf(const std::vector<Minute>& minutes, std::vector<Outage> outages,
    Milliseconds from, Milliseconds to);

} // namespace netvane::timeline
