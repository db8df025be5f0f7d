import QtQuick
import Netvane

// Something that is settled, in the introduction.
SymbolText {
    symbol: "checkmark.circle.fill"
    tint: Theme.lightBlue
    textColor: Theme.secondaryText
}
