#pragma once

#include <QObject>

#include <optional>

namespace netvane::platform {

/// Whether a panel of this session shows StatusNotifier items. Main thread.
class StatusNotifierHost : public QObject {
    Q_OBJECT

public:
    /// Absent while it is not known yet.
    virtual std::optional<bool> isPresent() const = 0;

Q_SIGNALS:
    void presenceChanged();
};

} // namespace netvane::platform
