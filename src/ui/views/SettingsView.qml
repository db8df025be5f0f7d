import QtQuick
import QtQuick.Layouts
import Netvane

FocusScope {
    id: root

    required property SettingsState viewState

    implicitWidth: 420
    implicitHeight: Math.min(500, column.implicitHeight)
    onVisibleChanged: if (visible) viewState.appear()
    Component.onCompleted: if (visible) viewState.appear()

    ScrollArea {
        anchors.fill: parent
        focus: true

        ColumnLayout {
            id: column
            width: parent.width
            spacing: 20

            SettingsHeader {
                Layout.fillWidth: true
                onBack: root.viewState.goBack()
            }
            ColumnLayout {
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                Layout.bottomMargin: 20
                Layout.maximumWidth: 720
                Layout.alignment: Qt.AlignHCenter
                spacing: 16

                AboutCard { viewState: root.viewState }
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
                SettingsCard {
                    visible: root.viewState.needsPermission
                    symbol: "hand.raised.fill"
                    tint: Theme.orange
                    title: "Permissions"

                    PlainText {
                        text: "Location Services"
                        font: Theme.calloutEmphasis
                    }
                    WrappedText {
                        text: "Required to display Wi‑Fi network name (SSID) on Linux"
                    }
                    PushButton {
                        text: "Open Settings"
                        onClicked: root.viewState.openLocationSettings()
                    }
                }
                NotificationsSectionView { viewState: root.viewState }
                DiagnosticsCard { viewState: root.viewState }
                WideButton {
                    symbol: "arrow.counterclockwise"
                    tint: Theme.orange
                    text: "Reset Onboarding"
                    onClicked: root.viewState.resetOnboarding()
                }
                WideButton {
                    symbol: "power"
                    tint: Theme.red
                    text: "Quit Netvane"
                    onClicked: root.viewState.quit()
                }
            }
        }
    }
}
