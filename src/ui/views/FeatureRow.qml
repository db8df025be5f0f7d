import QtQuick
import Netvane

// Something that the program does, in the introduction.
SymbolText {
    required property string icon

    symbol: icon
    tint: Theme.blue
    textColor: Theme.secondaryText
    textFont: Theme.callout
    symbolSize: 14
    symbolBox: 24
    spacing: 8
}
