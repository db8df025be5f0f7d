#pragma once

#include <QStringList>

class QQuickItem;

namespace netvane::test {

/// What no view may have, among its visible items: a text that could be drawn as anything but plain
/// text, a text that is cut (except one in an ElidedText, which offers the whole of it), a control
/// without a name for screen readers or out of the keyboard's reach. One line each.
QStringList auditView(QQuickItem& root);

/// The controls that the Tab key visits, in its order, from the first one on. Moves the focus of
/// the item's window, which must be the active one.
QList<QQuickItem*> tabChain(QQuickItem& root);

/// What a control or text is called, for messages.
QString describe(const QQuickItem& item);

} // namespace netvane::test
