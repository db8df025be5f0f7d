#include "ui/state/error_message_state.h"

#include "ui/state/dashboard_readings.h"

namespace netvane::ui {

ErrorMessageState::ErrorMessageState(const DashboardReadings& readings)
    : m_readings(readings)
{
    connect(&m_readings, &DashboardReadings::errorMessageChanged, this,
        &ErrorMessageState::messageChanged);
}

QVariant ErrorMessageState::message() const
{
    const auto& message = m_readings.errorMessage();
    return message ? QVariant(*message) : QVariant();
}

} // namespace netvane::ui
