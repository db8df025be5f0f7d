#include "app/desktop_clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace netvane::app {

void DesktopClipboard::setText(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace netvane::app
