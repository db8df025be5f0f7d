#include "shell/raw_press_monitor.h"

#include <QCursor>

#include <xcb/xinput.h>

namespace netvane::shell {
namespace {

// Devices' own numbers, which are not swapped for the left-handed; either way these are the two.
constexpr uint32_t kLeftButton = 1;
constexpr uint32_t kRightButton = 3;

/// The root window of the screen; none for a connection that failed.
xcb_window_t rootOf(xcb_connection_t* server, int screenNumber)
{
    if (xcb_connection_has_error(server))
        return XCB_NONE;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(server));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data->root : XCB_NONE;
}

/// From version 2.1 on they come even while some program has grabbed the mouse.
bool hasRawPresses(xcb_connection_t* server)
{
    const XcbReply version(xcb_input_xi_query_version_reply(
        server, xcb_input_xi_query_version(server, 2, 2), nullptr));
    return version
        && (version->major_version > 2
            || (version->major_version == 2 && version->minor_version >= 1));
}

void selectRawPresses(xcb_connection_t* server, xcb_window_t root)
{
    struct {
        xcb_input_event_mask_t head {XCB_INPUT_DEVICE_ALL_MASTER, 1};
        uint32_t events = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
    } mask;
    xcb_input_xi_select_events(server, root, 1, &mask.head);
    xcb_flush(server);
}

} // namespace

std::unique_ptr<RawPressMonitor> RawPressMonitor::create(Handler handler)
{
    int screenNumber = 0;
    Connection server(xcb_connect(nullptr, &screenNumber));
    const xcb_window_t root = rootOf(server.get(), screenNumber);
    if (root == XCB_NONE)
        return nullptr;
    const auto* extension = xcb_get_extension_data(server.get(), &xcb_input_id);
    if (!extension || !extension->present || !hasRawPresses(server.get()))
        return nullptr;
    selectRawPresses(server.get(), root);
    return std::unique_ptr<RawPressMonitor>(
        new RawPressMonitor(std::move(server), extension->major_opcode, std::move(handler)));
}

RawPressMonitor::RawPressMonitor(Connection server, uint8_t extension, Handler handler)
    : m_server(std::move(server))
    , m_extension(extension)
    , m_handler(std::move(handler))
    , m_notifier(xcb_get_file_descriptor(m_server.get()), QSocketNotifier::Read)
{
    QObject::connect(
        &m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { readEvents(); });
}

void RawPressMonitor::readEvents()
{
    while (const XcbReply event {xcb_poll_for_event(m_server.get())}) {
        const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event.get());
        if (generic->response_type != XCB_GE_GENERIC || generic->extension != m_extension
            || generic->event_type != XCB_INPUT_RAW_BUTTON_PRESS)
            continue;
        const auto button
            = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event.get())->detail;
        // Raw events carry no position.
        if (button == kLeftButton || button == kRightButton)
            m_handler(QCursor::pos());
    }
    if (xcb_connection_has_error(m_server.get()))
        m_notifier.setEnabled(false);
}

} // namespace netvane::shell
