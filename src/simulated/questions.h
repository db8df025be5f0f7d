#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace netvane::simulated {

/// Pending requests of one kind. Main thread.
template <typename... Values>
class Questions {
public:
    using Handler = std::function<void(const Values&...)>;

    void add(QObject* owner, Handler deliver)
    {
        if (!always)
            m_waiting.emplace_back(owner, std::move(deliver));
        else
            QMetaObject::invokeMethod(
                owner,
                [deliver = std::move(deliver), values = *always] { std::apply(deliver, values); },
                Qt::QueuedConnection);
        if (whenAsked)
            whenAsked();
    }
    /// Answers all pending ones, except those of a destroyed owner.
    void answer(const Values&... values)
    {
        for (const auto& [owner, deliver] : std::exchange(m_waiting, {})) {
            if (owner)
                deliver(values...);
        }
    }
    size_t size() const { return m_waiting.size(); }

    /// If present, each request gets this answer on a later turn of the event loop.
    std::optional<std::tuple<Values...>> always;
    /// Runs at each request.
    std::function<void()> whenAsked;

private:
    std::vector<std::pair<QPointer<QObject>, Handler>> m_waiting;
};

} // namespace netvane::simulated
