#pragma once

#include <QObject>

#include <type_traits>
#include <utility>

namespace netvane::base {

/// Sets `field`, a property of `object`, and emits `changed`. Does nothing if the field already has
/// this value, because each signal makes the views draw again. Thread of `object`.
template <typename Object, typename Value>
void publish(
    Object& object, Value& field, std::type_identity_t<Value> value, void (Object::*changed)())
{
    if (field == value)
        return;
    field = std::move(value);
    Q_EMIT(object.*changed)();
}

} // namespace netvane::base
