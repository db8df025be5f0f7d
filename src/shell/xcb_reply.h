#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace netvane::shell {

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
