import QtQuick

// What comes and goes in a layout, its parent.
//
// Qt 6.4 has a layout let go of items that were destroyed when it next paints, and uses freed memory when the layout is
// resized before that.
Repeater {
    onModelChanged: parent.ensurePolished()
}
