#include "shell/x11_selection.h"

#include <QGuiApplication>

namespace netvane::shell {
namespace {

int screenNumber()
{
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0)
        std::free(host);
    return screen;
}

} // namespace

xcb_connection_t* x11Connection()
{
    // Platforms without a display may have the interface all the same, and nothing behind it.
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

bool isX11()
{
    return x11Connection() != nullptr;
}

bool isX11SelectionHeld(const char* prefix)
{
    auto* server = x11Connection();
    if (!server)
        return false;
    const QByteArray name = prefix + QByteArray::number(screenNumber());
    const XcbReply atom(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, uint16_t(name.size()), name.constData()), nullptr));
    if (!atom)
        return false;
    const XcbReply owner(xcb_get_selection_owner_reply(
        server, xcb_get_selection_owner(server, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace netvane::shell
