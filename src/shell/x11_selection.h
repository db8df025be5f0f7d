#pragma once

struct xcb_connection_t;

namespace netvane::shell {

/// Qt's own connection to the X server that shows the program's windows; null without one.
xcb_connection_t* x11Connection();
/// Whether the program's windows are those of an X server.
bool isX11();
/// Whether some program holds the selection of this name with the number of our screen appended,
/// as managers of a screen's things do (ICCCM, "Manager Selections"). Asks the X server, which
/// takes a fraction of a millisecond; false without one. Main thread.
bool isX11SelectionHeld(const char* prefix);

} // namespace netvane::shell
