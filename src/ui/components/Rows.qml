import QtQuick

// Repeated items of a layout, its parent.
//
// In Qt 6.4 a layout removes destroyed items only when it next paints, and uses freed memory if it
// is resized before.
Repeater {
    onModelChanged: parent?.ensurePolished()
}
