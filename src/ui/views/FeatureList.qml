import QtQuick
import QtQuick.Layouts
import Netvane

ColumnLayout {
    id: root

    // Of each: its symbol and its text.
    required property var rows

    spacing: 8

    Rows {
        model: root.rows
        FeatureRow {
            required property var modelData

            icon: modelData[0]
            text: modelData[1]
        }
    }
}
