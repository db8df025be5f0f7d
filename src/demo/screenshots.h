#pragma once

#include <QString>

class QApplication;

namespace netvane::demo {

/// Draws the views in light and dark as PNG files into a folder, which it makes; false when a file
/// could not be written. Wants a window system that draws what is asked for (Qt's "offscreen").
bool drawScreenshots(QApplication& application, const QString& folder);

} // namespace netvane::demo
