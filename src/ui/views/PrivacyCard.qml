import QtQuick
import QtQuick.Layouts
import Netvane

SettingsCard {
    symbol: "checkmark.shield.fill"
    tint: Theme.green
    title: "Privacy & Safety"

    RowLayout {
        spacing: 12

        Symbol {
            Layout.alignment: Qt.AlignTop
            name: "lock.shield.fill"
            size: 18
            color: Theme.green
        }
        ColumnLayout {
            spacing: 4

            WrappedText {
                text: "100% Read-Only Operation"
                font: Theme.calloutEmphasis
                color: Theme.primaryText
            }
            WrappedText {
                text: "This app does not modify any Wi‑Fi settings, access passwords, or store personal data."
            }
        }
    }
}
