#pragma once

#include "base/clock.h"
#include "verdict/evidence.h"
#include "verdict/verdict.h"

#include <QObject>

#include <memory>

namespace netvane::platform {
struct Platform;
} // namespace netvane::platform
namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::verdict {

/// Collects the evidence while the other services measure, judges it at most once a tick of theirs,
/// and publishes a verdict that changed. Main thread.
class VerdictService : public QObject {
    Q_OBJECT

public:
    const Verdict& verdict() const;
    /// As it stands now; for whoever shows or prints it.
    const Evidence& evidence() const;

Q_SIGNALS:
    /// Cause, severity or sentence changed.
    void verdictChanged();
    /// The figures of evidence or chain changed, or the verdict; a window that shows them follows
    /// it.
    void evidenceChanged();
};

} // namespace netvane::verdict
