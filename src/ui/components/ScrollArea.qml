import QtQuick
import QtQuick.Templates as T
import Netvane

// Scrolls content that is higher than itself, by wheel, touch and keys, and follows the keyboard
// focus.
Flickable {
    id: root

    default property alias content: holder.data
    property bool showsIndicator: false
    property real bottomPadding: 0

    readonly property Item focusItem: Window.activeFocusItem

    function reveal(item: Item): void {
        let ancestor = item
        while (ancestor && ancestor !== holder)
            ancestor = ancestor.parent
        if (!ancestor)
            return
        const top = item.mapToItem(holder, 0, 0).y - 12
        const bottom = top + item.height + 24
        scrollTo(top < contentY ? top : bottom > contentY + height ? bottom - height : contentY)
    }

    function scrollTo(y: real): void {
        contentY = Math.max(0, Math.min(y, contentHeight - height))
    }

    contentWidth: width
    contentHeight: holder.height
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    onFocusItemChanged: reveal(focusItem)
    Keys.onPressed: event => {
        const steps = {
            [Qt.Key_Up]: -40, [Qt.Key_Down]: 40,
            [Qt.Key_PageUp]: -height * 0.9, [Qt.Key_PageDown]: height * 0.9,
            [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight
        }
        const step = steps[event.key]
        event.accepted = step !== undefined
        if (step !== undefined)
            scrollTo(contentY + step)
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        visible: root.showsIndicator && size < 1
        implicitWidth: 10
        padding: 2
        minimumSize: 0.06
        contentItem: Rectangle {
            implicitWidth: 6
            radius: 3
            color: bar.pressed || bar.hovered ? Theme.secondaryText : Theme.outline
        }
    }

    Item {
        id: holder
        width: root.width
        height: childrenRect.y + childrenRect.height + root.bottomPadding
    }
}
