#pragma once

#include "platform/clipboard.h"

namespace netvane::shell {

/// The desktop's clipboard, not the selection that the middle mouse button pastes.
class DesktopClipboard : public platform::Clipboard {
public:
    void setText(const QString& text) override;
};

} // namespace netvane::shell
