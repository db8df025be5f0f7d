pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// Whether another access point would be better, the changes so far, and the adapters.
ScrollArea {
    id: root

    required property AirState air

    showsIndicator: true
    bottomPadding: 20

    ColumnLayout {
        x: 20
        width: parent.width - 40
        spacing: 16

        Card {
            title: "Access points of this network"
            padding: 20
            spacing: 8

            SectionTitle { text: "Access points of this network" }
            WrappedText {
                text: root.air.roaming
                font: Theme.callout
                color: Theme.primaryText
            }
            WrappedText {
                text: root.air.moves.length === 0 ? "No change of the access point is remembered from the last 24 hours."
                    : root.air.moves.length === 1 ? "One change in the last 24 hours:"
                    : root.air.moves.length + " changes in the last 24 hours, newest first:"
            }
            Rows {
                model: root.air.moves

                DetailLine {}
            }
        }
        Card {
            title: "Adapters"
            padding: 20
            spacing: 8

            SectionTitle { text: "Adapters" }
            WrappedText {
                visible: root.air.adapters.length === 0
                text: "There is no Wi-Fi adapter."
            }
            Rows {
                model: root.air.adapters.length

                RowLayout {
                    id: adapter

                    required property int index
                    readonly property detailRow shown: root.air.adapters[index]
                    readonly property bool isPinned: shown.text === root.air.adapter

                    AirLine { shown: adapter.shown }
                    PushButton {
                        Layout.preferredWidth: 110
                        Layout.alignment: Qt.AlignTop
                        visible: root.air.adapters.length > 1
                        text: adapter.isPinned ? "Follow all" : "Show this one"
                        Accessible.description: adapter.shown.text
                        onClicked: root.air.adapter = adapter.isPinned ? "" : adapter.shown.text

                        HoverTip { text: adapter.isPinned ? "This window shows the adapter that is in use" : "This window stays with this adapter" }
                    }
                }
            }
        }
    }
}
