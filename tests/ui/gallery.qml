import QtQuick
import QtQuick.Layouts
import Netvane

// One of each component, to be pressed by tests and looked at by people.
ColumnLayout {
    id: root

    property var values: [52, 54, 51, 58, 57, 70, 54]
    property string pressed
    property string name: "A network with quite a long name, longer than this line <img src='http://127.0.0.1/x'>"

    spacing: 12

    Card {
        title: "Card"
        RowLayout {
            spacing: 8
            IconTile { symbol: "speedometer"; tint: Theme.green }
            ElidedText { objectName: "elided"; text: root.name; font: Theme.headline }
            Sparkline { values: root.values; color: Theme.green; implicitWidth: 80; implicitHeight: 24 }
        }
        RowLayout {
            InfoButton { id: info; tip: "What this means" }
            Spinner { visible: true }
        }
        WrappedText { visible: info.checked; text: "An explanation that is shown on demand and takes as many lines as it wants, here at least two." }
        Divider { }
        RowLayout {
            PushButton { text: "Bordered"; onClicked: root.pressed = text }
            PushButton { text: "Prominent"; prominent: true; symbol: "arrow.up.right.square"; onClicked: root.pressed = text }
            PushButton { text: "Small"; small: true; onClicked: root.pressed = text }
            PushButton { text: "Disabled"; enabled: false }
        }
        ToggleSwitch { text: "Network Changes"; Layout.fillWidth: true; onClicked: root.pressed = text + checked }
        SymbolText { symbol: "checkmark.circle.fill"; text: "A text beside its symbol that goes on to a second line when there is no more room"; tint: Theme.green; Layout.fillWidth: true }
    }
    Card {
        title: "Symbols"
        Flow {
            Layout.fillWidth: true
            spacing: 10
            Repeater {
                model: ["network", "info.circle", "info.circle.fill", "checkmark.circle.fill", "antenna.radiowaves.left.and.right",
                    "wifi", "wifi.circle.fill", "waveform.path", "speedometer", "lock.shield.fill", "checkmark.shield.fill",
                    "lock.open", "location.fill", "lightbulb.fill", "globe", "exclamationmark.triangle",
                    "exclamationmark.triangle.fill", "sparkles", "power", "phone.fill", "hand.raised.fill", "gearshape.fill",
                    "doc.text.fill", "chevron.left", "chart.line.uptrend.xyaxis", "chart.bar.fill", "bell.fill",
                    "arrow.up.right.square", "arrow.up", "arrow.down", "arrow.triangle.2.circlepath", "arrow.counterclockwise"]
                Symbol {
                    required property string modelData
                    name: modelData
                    size: 48
                    color: Theme.blue
                }
            }
        }
    }
}
