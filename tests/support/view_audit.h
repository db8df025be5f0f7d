#pragma once

#include <QStringList>

class QQuickItem;

namespace netvane::test {

/// `root` and what is below it, in the order of the tree; hidden items are left out.
QList<QQuickItem*> visibleItems(QQuickItem& root);

/// The faults of the visible items, one line each: a text that may be drawn as rich text, a text
/// that is cut (an ElidedText offers the whole of it), a control without a name for screen readers
/// or one that Tab does not reach.
QStringList auditView(QQuickItem& root);

/// Names a control or text in a message.
QString describe(const QQuickItem& item);

} // namespace netvane::test
