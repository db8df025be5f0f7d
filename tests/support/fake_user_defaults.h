#pragma once

#include "platform/user_defaults.h"

#include <QHash>
#include <QVariant>

namespace netvane::test {

/// Defaults that live in memory; a test looks into `values`.
class FakeUserDefaults final : public platform::UserDefaults {
public:
    std::optional<bool> boolean(const QString& key) const override
    {
        const QVariant value = values.value(key);
        return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
    }
    std::optional<QString> text(const QString& key) const override
    {
        const QVariant value = values.value(key);
        return value.typeId() == QMetaType::QString ? std::optional(value.toString())
                                                    : std::nullopt;
    }
    void setBoolean(const QString& key, bool value) override { values[key] = value; }
    void setText(const QString& key, const QString& value) override { values[key] = value; }
    void remove(const QString& key) override { values.remove(key); }

    QHash<QString, QVariant> values;
};

} // namespace netvane::test
