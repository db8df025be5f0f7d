#pragma once

#include "report/verdict_object.h"

#include <type_traits>

namespace netvane::report {

/// Fields of an object; absent values and empty texts are left out.
class Fields {
public:
    Fields& add(const QString& name, const QJsonValue& value)
    {
        m_object.insert(name, value);
        return *this;
    }
    Fields& add(const QString& name, const QString& value)
    {
        if (!value.isEmpty())
            m_object.insert(name, value);
        return *this;
    }
    template <typename Value>
    Fields& add(const QString& name, const std::optional<Value>& value)
    {
        if constexpr (std::is_floating_point_v<Value>)
            return value ? add(name, QJsonValue(rounded(*value))) : *this;
        else if constexpr (std::is_same_v<Value, std::uint64_t>)
            return value ? add(name, QJsonValue(qint64(*value))) : *this;
        else
            return value ? add(name, *value) : *this;
    }
    const QJsonObject& object() const { return m_object; }

private:
    QJsonObject m_object;
};

} // namespace netvane::report
