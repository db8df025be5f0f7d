#pragma once

#include <QObject>
#include <QVariant>
#include <QtQmlIntegration>

#include <optional>

/// The colours that a value can get, by name. C++ decides which one; `Theme.accents` has the colour
/// of each in the current scheme, in this order.
namespace netvane::ui::accent {
Q_NAMESPACE
QML_NAMED_ELEMENT(Accent)

enum Value { Blue, Green, Orange, Red, LightBlue, Tertiary };
Q_ENUM_NS(Value)

} // namespace netvane::ui::accent

namespace netvane::ui {

using Accent = accent::Value;

/// How QML gets a value that may be absent: as `undefined`.
template <typename Value>
QVariant orUndefined(const std::optional<Value>& value)
{
    return value ? QVariant::fromValue(*value) : QVariant();
}

} // namespace netvane::ui
