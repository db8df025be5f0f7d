#pragma once

#include "timeline/source.h"

#include <memory>

namespace netvane::history {
class HistoryStore;
class Recorder;
} // namespace netvane::history

namespace netvane::timeline {

/// What the program has recorded. `recorder` outlives the calls for the main thread. Main thread.
std::shared_ptr<Source> recordedSource(history::Recorder& recorder);

/// A part of a history that no recorder of this program writes. Waits for the disk; any thread.
Remembered rememberedOf(history::HistoryStore& store, Milliseconds from, Milliseconds to);
ProviderFacts factsOf(history::HistoryStore& store, Milliseconds from, Milliseconds to);

} // namespace netvane::timeline
