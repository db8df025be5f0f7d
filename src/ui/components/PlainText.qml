import QtQuick
import Netvane

// The only text element of the program. Qt's own guesses whether a text is markup, and would fetch
// a picture that the name of a network mentions.
Text {
    color: Theme.primaryText
    font: Theme.body
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
