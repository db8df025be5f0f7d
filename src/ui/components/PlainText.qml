import QtQuick
import Netvane

// The only text element of the program. Qt's own Text detects markup by itself: a network could be
// named so that it loads a picture.
Text {
    color: Theme.primaryText
    font: Theme.body
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
