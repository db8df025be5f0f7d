#pragma once

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace netvane::base {

/// Has the main thread call `action` on one of its next turns, in the order of the calls. From any
/// thread, never inside this call; dropped once there is no application.
/// An owner is captured as a QPointer and asked for in the action only: there, on the thread that
/// would destroy it, the answer stays true.
template <typename Action>
void postToMainThread(Action action)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), std::move(action), Qt::QueuedConnection);
}

} // namespace netvane::base
