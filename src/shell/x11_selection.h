#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace netvane::shell {

/// Qt's own connection to the X server that shows the program's windows; null without one.
xcb_connection_t* x11Connection();
/// Whether the program's windows are those of an X server.
bool isX11();
/// Whether some program holds the selection of this name with the number of our screen appended,
/// as managers of a screen's things do (ICCCM, "Manager Selections"). Asks the X server, which
/// takes a fraction of a millisecond; false without one. Main thread.
bool isX11SelectionHeld(const char* prefix);

struct FreeXcbReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// An answer or event of the X server, which libxcb hands over in memory of malloc(3); null when
/// there is none.
template <typename Reply>
class XcbReply : public std::unique_ptr<Reply, FreeXcbReply> {
public:
    explicit XcbReply(Reply* reply)
        : std::unique_ptr<Reply, FreeXcbReply>(reply)
    {
    }
};

} // namespace netvane::shell
