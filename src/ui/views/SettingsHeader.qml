import QtQuick
import QtQuick.Layouts
import Netvane

Rectangle {
    id: root

    signal back

    implicitHeight: column.implicitHeight + 32
    gradient: Gradient {
        GradientStop { position: 0; color: Theme.controlBackground }
        GradientStop { position: 1; color: Qt.alpha(Theme.controlBackground, 0.5) }
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 8

        PlainButton {
            id: button
            text: "Back"
            verticalPadding: 4
            horizontalPadding: 8
            onClicked: root.back()

            contentItem: RowLayout {
                spacing: 4

                Symbol {
                    name: "chevron.left"
                    size: 12
                    color: Theme.blue
                }
                PlainText {
                    text: button.text
                    color: Theme.blue
                    font: Theme.calloutEmphasis
                    Accessible.ignored: true
                }
            }
        }
        SectionTitle {
            text: "Settings"
            font: Theme.title
        }
    }
}
