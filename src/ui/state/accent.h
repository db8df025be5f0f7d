#pragma once

#include <QObject>
#include <QtQmlIntegration>

/// The colours that a value can get, by name: which one is decided in C++, what it looks like in
/// the current scheme by `Theme.accents`, which has them in this order.
namespace netvane::ui::accent {
Q_NAMESPACE
QML_NAMED_ELEMENT(Accent)

enum Value { Blue, Green, Orange, Red, LightBlue, Tertiary };
Q_ENUM_NS(Value)

} // namespace netvane::ui::accent

namespace netvane::ui {
using Accent = accent::Value;
} // namespace netvane::ui
