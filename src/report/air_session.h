#pragma once

#include "platform/platform.h"

#include <QObject>

#include <optional>

namespace netvane::report {

/// Reads the air twice, so that there are counts between. Main thread.
class AirSession : public QObject {
    Q_OBJECT

public:
    /// What is asked for without a number of seconds.
    static constexpr std::chrono::seconds kDuration {10};

    /// `platform` outlives the session.
    explicit AirSession(platform::Platform& platform)
        : m_platform(platform)
    {
    }

    /// The first reading. With a duration the second follows after it; without a link there is
    /// nothing to count, and the first is also the last.
    void start(std::optional<std::chrono::seconds> duration);
    /// The second reading, after it `finished`.
    void finish();

    /// The newest reading, or why there is none, for the user.
    const base::Result<platform::AirReading>& reading() const { return m_reading; }
    platform::AirChange change() const;

Q_SIGNALS:
    void finished();

private:
    void read(const std::function<void(const base::Result<platform::AirReading>&)>& take);

    platform::Platform& m_platform;
    using Reading = base::Result<platform::AirReading>;
    Reading m_first = base::Failure {base::FailureKind::NotAvailable, {}};
    Reading m_reading = m_first;
    std::unique_ptr<base::Timer> m_timer;
};

} // namespace netvane::report
