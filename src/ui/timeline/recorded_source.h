#pragma once

#include "timeline/source.h"

#include <memory>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// What the services have recorded, which is nothing yet. All services exist; the source may
/// outlive them. Main thread.
std::shared_ptr<timeline::Source> recordedSource(const services::Services& services);

} // namespace netvane::ui
