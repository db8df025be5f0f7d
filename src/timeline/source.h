#pragma once

// This room makes what people see of the history: the chart of a time line, the words for spikes,
// outages and bad hours, and the page for a provider. It draws nothing and knows no file; what is
// remembered comes from a `Source`.

#include "timeline/chart_maker.h"

namespace netvane::timeline {

/// The history as the views read it.
class Source {
public:
    virtual ~Source() = default;

    // Any thread but the main one; they wait for the disk. Times without anything are left out.

    /// `step` of the range allows coarser minutes than there are.
    virtual Remembered remembered(const ChartRange& range) const = 0;
    /// All but the network's name.
    virtual ProviderFacts facts(Milliseconds from, Milliseconds to) const = 0;

    // Main thread.

    /// Whether there is anything that records; without it the switch has no effect.
    virtual bool canRecord() const { return true; }
    virtual bool isRecording() const = 0;
    virtual void setRecording(bool isRecording) = 0;
    /// The name of the network that is in use, from outside; absent without one that is remembered.
    virtual std::optional<QString> network() const = 0;
    virtual void forgetNetwork() = 0;
    virtual void forgetEverything() = 0;
};

} // namespace netvane::timeline
