#pragma once

#include <QString>

namespace netvane::insights {

/// A name from outside as a piece of a line of Markdown that is read as the name is: as it stands
/// when every reader of Markdown shows that as it is written, and otherwise as a code span
/// (CommonMark 0.30, 6.1), with a visible escape for spaces that would be drawn as one. So no name
/// becomes a link, a picture or a heading, and different names look different. `name` holds no
/// character that cannot be seen (`base::ssidText`, `base::withVisibleControls`).
QString markdownName(const QString& name);

} // namespace netvane::insights
