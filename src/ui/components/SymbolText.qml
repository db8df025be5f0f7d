import QtQuick
import QtQuick.Layouts
import Netvane

// A symbol with a text beside it, both in one colour.
RowLayout {
    id: root

    required property string symbol
    required property string text
    property color tint: Theme.secondaryText
    property color textColor: tint
    property font textFont: Theme.caption
    property real symbolSize: 12
    // Symbols of different widths in a column get boxes of the same width.
    property real symbolBox: symbolSize

    spacing: 4

    Item {
        implicitWidth: root.symbolBox
        implicitHeight: root.symbolSize
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.max(0, (line.height - root.symbolSize) / 2)

        Symbol {
            anchors.centerIn: parent
            name: root.symbol
            size: root.symbolSize
            color: root.tint
        }
    }
    WrappedText {
        text: root.text
        font: root.textFont
        color: root.textColor
    }
    FontMetrics {
        id: line
        font: root.textFont
    }
}
