import QtQuick
import Netvane

// How far one has come in the introduction: the dots of the pages up to this one are filled.
Row {
    id: root

    required property int currentStep

    spacing: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: "Page " + (currentStep + 1) + " of 3"

    Rows {
        model: [root.currentStep >= 0, root.currentStep >= 1, root.currentStep >= 2]
        Rectangle {
            required property bool modelData

            width: 8
            height: 8
            radius: 4
            color: modelData ? Theme.blue : Theme.separator
        }
    }
}
