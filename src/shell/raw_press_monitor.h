#pragma once

#include "shell/outside_click_monitor.h"
#include "shell/x11_selection.h"

#include <QSocketNotifier>

namespace netvane::shell {

/// Receives each press of a mouse button on an X server, for any window and any keyboard focus (X
/// Input Extension 2.1, RawButtonPress on the root window), on its own connection.
class RawPressMonitor final : public OutsideClickMonitor {
public:
    /// Null where the server cannot be reached or lacks the extension.
    static std::unique_ptr<RawPressMonitor> create(Handler handler);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* server) const { xcb_disconnect(server); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    RawPressMonitor(Connection server, uint8_t extension, Handler handler);
    void readEvents();

    Connection m_server;
    uint8_t m_extension; ///< the major opcode by which its events are known
    Handler m_handler;
    QSocketNotifier m_notifier;
};

} // namespace netvane::shell
