import QtQuick
import QtQuick.Layouts
import Netvane

// A text of any length that takes the lines it needs.
PlainText {
    Layout.fillWidth: true
    font: Theme.caption
    color: Theme.secondaryText
    wrapMode: Text.Wrap
}
