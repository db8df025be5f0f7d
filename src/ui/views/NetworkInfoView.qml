import QtQuick
import QtQuick.Layouts
import Netvane

// The head of a dashboard: whose it is, the way to the settings, and the network.
ColumnLayout {
    id: root

    required property NetworkInfoState viewState

    spacing: 12

    RowLayout {
        Layout.leftMargin: 16
        Layout.rightMargin: 16

        ColumnLayout {
            spacing: 0

            SectionTitle {
                text: "Netvane"
                font: Theme.title
            }
            WrappedText { text: "Network Diagnostics" }
        }
        PlainButton {
            text: "Settings"
            onClicked: root.viewState.settingsRequested()

            contentItem: Rectangle {
                implicitWidth: 32
                implicitHeight: 32
                radius: 6
                color: Theme.cardBackground

                Symbol {
                    anchors.centerIn: parent
                    name: "gearshape.fill"
                    size: 14
                    color: Theme.secondaryText
                }
            }
        }
    }
    Card {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        title: "Connection"

        RowLayout {
            visible: root.viewState.isConnected
            spacing: 12

            StatusDot {
                Layout.margins: -glowRadius
                color: Theme.accents[root.viewState.signalAccent]
            }
            ColumnLayout {
                spacing: 2

                ElidedText {
                    text: root.viewState.networkName
                    font: Theme.headline
                    elide: root.viewState.hasName ? Text.ElideMiddle : Text.ElideNone
                    wrapMode: root.viewState.hasName ? Text.NoWrap : Text.Wrap
                    maximumLineCount: root.viewState.hasName ? 1 : 3
                }
                RowLayout {
                    spacing: 8

                    Chip { text: root.viewState.band }
                    PlainText {
                        Layout.fillWidth: true
                        text: root.viewState.signalText
                        font: Theme.caption
                        color: Theme.tertiaryText
                    }
                }
            }
        }
        RowLayout {
            visible: !root.viewState.isConnected
            spacing: 12

            StatusDot {
                Layout.margins: -glowRadius
                color: Theme.red
                isLit: false
            }
            SectionTitle {
                text: "Not Connected"
                Accessible.role: Accessible.StaticText
            }
        }
    }
    SymbolText {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        Layout.topMargin: 4
        symbol: root.viewState.vpnSymbol
        symbolSize: 10
        text: root.viewState.vpnText
        textFont: Theme.footnote
        tint: Theme.accents[root.viewState.vpnAccent]
    }
}
