import QtQuick
import QtQuick.Layouts
import Netvane

Rectangle {
    Layout.fillWidth: true
    implicitHeight: 1
    color: Theme.separator
    Accessible.ignored: true
}
