#include "shell/desktop_clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace netvane::shell {

void DesktopClipboard::setText(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace netvane::shell
