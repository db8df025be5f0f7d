#include "shell/status_area.h"

#include "shell/x11_selection.h"

#include <QGuiApplication>

namespace netvane::shell {
namespace {

constexpr uint8_t kSentBit = 0x80; // of the type of an event that another program sent
constexpr char kManager[] = "MANAGER";

xcb_atom_t managerAtom()
{
    auto* server = x11Connection();
    if (!server)
        return XCB_ATOM_NONE;
    const auto asked = xcb_intern_atom(server, 0, sizeof(kManager) - 1, kManager);
    const XcbReply atom(xcb_intern_atom_reply(server, asked, nullptr));
    return atom ? atom->atom : xcb_atom_t(XCB_ATOM_NONE);
}

} // namespace

StatusArea::StatusArea(const platform::StatusNotifierHost& host)
    : m_host(host)
    , m_managerAtom(managerAtom())
{
    connect(&m_host, &platform::StatusNotifierHost::presenceChanged, this, &StatusArea::changed);
    if (m_managerAtom != XCB_ATOM_NONE)
        qGuiApp->installNativeEventFilter(this);
}

StatusArea::~StatusArea()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

StatusArea::State StatusArea::state() const
{
    if (!m_host.isPresent())
        return State::Unknown;
    return *m_host.isPresent() || isX11SelectionHeld("_NET_SYSTEM_TRAY_S") ? State::Present
                                                                           : State::Absent;
}

/// A tray that starts sends this event to all windows that listen to the root window, as Qt does.
bool StatusArea::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ~kSentBit) != XCB_CLIENT_MESSAGE)
        return false;
    if (static_cast<const xcb_client_message_event_t*>(message)->type == m_managerAtom)
        QMetaObject::invokeMethod(this, &StatusArea::changed, Qt::QueuedConnection);
    return false;
}

} // namespace netvane::shell
