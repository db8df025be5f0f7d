pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// The link in words.
ScrollArea {
    id: root

    required property AirState air

    focus: true
    activeFocusOnTab: true
    showsIndicator: true
    bottomPadding: 20
    Accessible.role: Accessible.Grouping
    Accessible.name: "Link"

    ColumnLayout {
        x: 20
        width: parent.width - 40
        spacing: 16

        Card {
            title: "Link"
            padding: 20
            spacing: 8
            Accessible.role: Accessible.List

            WrappedText {
                visible: root.air.link.length === 0
                text: "There is no link."
            }
            Rows {
                model: root.air.link.length

                AirLine {
                    required property int index

                    shown: root.air.link[index]
                }
            }
        }
    }
}
