import QtQuick
import QtQuick.Layouts
import Netvane

// The frame of a section of the dashboard; its children are stacked vertically.
Item {
    id: root

    default property alias content: column.data
    property alias spacing: column.spacing
    property alias radius: surface.radius
    property alias hasShadow: surface.hasShadow
    property alias color: surface.color
    property real padding: 12
    // The name of the group for screen readers.
    property string title

    Layout.fillWidth: true
    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    CardBackground {
        id: surface
        anchors.fill: parent
    }
    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: root.padding
        spacing: 12
    }
}
