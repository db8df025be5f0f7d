#include "report/air_session.h"

#include "base/background_work.h"
#include "report/redaction.h"

namespace netvane::report {

void AirSession::read(const std::function<void(const base::Result<platform::AirReading>&)>& take)
{
    base::runInBackground(
        m_platform.queues->userInitiated, this,
        [reader = m_platform.airReader] { return reader->read({}); }, take);
}

void AirSession::start(std::optional<std::chrono::seconds> duration)
{
    read([this, duration](const auto& reading) {
        m_first = m_reading = reading;
        if (!duration)
            return;
        if (reading && reading.value().link)
            m_timer = m_platform.clock->after(*duration, [this] { finish(); });
        else // nothing to count
            Q_EMIT finished();
    });
}

void AirSession::finish()
{
    read([this](const auto& reading) {
        m_reading = reading;
        Q_EMIT finished();
    });
}

platform::AirChange AirSession::change() const
{
    return m_first && m_reading ? platform::changeBetween(m_first.value(), m_reading.value())
                                : platform::AirChange {};
}

} // namespace netvane::report
