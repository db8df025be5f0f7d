import QtQuick
import QtQuick.Layouts
import Netvane

// The top of a dashboard: the program's name, the button for the settings, and the network.
ColumnLayout {
    id: root

    required property DashboardState viewState
    readonly property networkInfo info: viewState.networkInfo

    spacing: 12

    RowLayout {

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
            onClicked: root.viewState.showSettings = true

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
        title: "Connection"

        RowLayout {
            visible: root.info.isConnected
            spacing: 12

            StatusDot {
                Layout.margins: -glowRadius
                color: Theme.accents[root.info.signalAccent]
                Accessible.role: Accessible.Graphic
                Accessible.name: root.info.signalGrade

                HoverTip { text: root.info.signalGrade }
            }
            ColumnLayout {
                spacing: 2

                ElidedText {
                    text: root.info.networkName
                    font: Theme.headline
                    elide: root.info.hasName ? Text.ElideMiddle : Text.ElideNone
                    wrapMode: root.info.hasName ? Text.NoWrap : Text.Wrap
                    maximumLineCount: root.info.hasName ? 1 : 3
                }
                RowLayout {
                    spacing: 8

                    Rectangle {
                        implicitWidth: band.implicitWidth + 16
                        implicitHeight: band.implicitHeight + 6
                        radius: 6
                        color: Theme.cardBackground
                        border.color: Theme.separator

                        PlainText {
                            id: band
                            anchors.centerIn: parent
                            text: root.info.band
                            font: Theme.caption
                            color: Theme.secondaryText
                        }
                    }
                    PlainText {
                        Layout.fillWidth: true
                        text: root.info.signalText
                        font: Theme.caption
                        color: Theme.tertiaryText
                    }
                }
            }
        }
        RowLayout {
            visible: !root.info.isConnected
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
        Layout.topMargin: 4
        symbol: root.info.vpnActive ? "lock.shield.fill" : "lock.open"
        symbolSize: 10
        text: root.info.vpnActive ? "VPN active" : "No VPN"
        textFont: Theme.footnote
        tint: root.info.vpnActive ? Theme.lightBlue : Theme.tertiaryText
    }
}
