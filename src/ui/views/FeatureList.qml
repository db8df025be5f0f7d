import QtQuick
import QtQuick.Layouts
import Netvane

// What the program does, in the introduction.
ColumnLayout {
    id: root

    // The symbol and the text of each item.
    required property var rows

    spacing: 8

    Rows {
        model: root.rows

        SymbolText {
            required property var modelData

            symbol: modelData[0]
            text: modelData[1]
            tint: Theme.blue
            textColor: Theme.secondaryText
            textFont: Theme.callout
            symbolSize: 14
            symbolBox: 24
            spacing: 8
        }
    }
}
