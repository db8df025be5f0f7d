import QtQuick
import QtQuick.Layouts
import Netvane

PlainText {
    Layout.fillWidth: true
    font: Theme.headline
    elide: Text.ElideRight
    Accessible.role: Accessible.Heading
}
