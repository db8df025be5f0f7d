import QtQuick
import Netvane

// The answer to a press, in the card of its button, where nothing else would show that the press was
// seen. Without a text it takes no place. Screen readers announce it when it comes into sight, so a
// state that has the same to say again clears the text first. Looks like a problem unless told
// otherwise.
SymbolText {
    visible: text !== ""
    spacing: 8
    symbol: "exclamationmark.triangle.fill"
    tint: Theme.orange
    textColor: Theme.secondaryText
    Accessible.role: Accessible.Notification
    Accessible.name: text
}
