import QtQuick
import QtQuick.Layouts
import Netvane

// The introduction for new users.
FocusScope {
    id: root

    required property OnboardingState viewState

    readonly property int currentStep: viewState.currentStep

    implicitWidth: 420
    implicitHeight: 500
    focus: true
    onCurrentStepChanged: scroller.contentY = 0
    Keys.onReturnPressed: viewState.goOn()
    Keys.onEnterPressed: viewState.goOn()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        // The dots of the pages up to the current one are filled.
        Row {
            Layout.alignment: Qt.AlignHCenter
            Layout.margins: 16
            Layout.bottomMargin: 8
            spacing: 8
            Accessible.role: Accessible.StaticText
            Accessible.name: "Page " + (root.currentStep + 1) + " of 3"

            Rows {
                model: [root.currentStep >= 0, root.currentStep >= 1, root.currentStep >= 2]

                Rectangle {
                    required property bool modelData

                    width: 8
                    height: 8
                    radius: 4
                    color: modelData ? Theme.blue : Theme.separator
                    border.color: modelData ? Theme.blue : Theme.outline
                }
            }
        }
        ScrollArea {
            id: scroller
            Layout.fillWidth: true
            Layout.fillHeight: true

            Item {
                width: scroller.width
                height: Math.max(scroller.height,
                    [welcome, permission, ready][root.currentStep].implicitHeight)

                OnboardingPage {
                    id: welcome
                    step: OnboardingState.Welcome
                    currentStep: root.currentStep
                    symbol: "wifi.circle.fill"
                    symbolSize: 64
                    tint: Theme.blue
                    title: "Welcome to Netvane"
                    titleFont: Theme.largeTitle
                    text: "Diagnose and monitor your Wi‑Fi connection with comprehensive real-time diagnostics."

                    FeatureList {
                        Layout.topMargin: 8
                        Layout.fillWidth: false
                        Layout.maximumWidth: welcome.width
                        Layout.alignment: Qt.AlignHCenter
                        rows: [
                            ["antenna.radiowaves.left.and.right", "Real-time signal strength & quality"],
                            ["speedometer", "Router & internet performance metrics"],
                            ["chart.line.uptrend.xyaxis", "Live graphs and history"],
                            ["lightbulb.fill", "Smart recommendations"]
                        ]
                    }
                }
                OnboardingPage {
                    id: permission
                    step: OnboardingState.Permission
                    currentStep: root.currentStep
                    symbol: "location.fill"
                    tint: Theme.lightBlue
                    title: "Location Permission"
                    text: "Netvane needs Location Services permission to display your Wi‑Fi network name (SSID)."

                    ColumnLayout {
                        Layout.topMargin: 4
                        Layout.bottomMargin: 4
                        Layout.fillWidth: false
                        Layout.maximumWidth: permission.width
                        Layout.alignment: Qt.AlignHCenter
                        spacing: 8

                        InfoRow { text: "Required by Linux for security reasons" }
                        InfoRow { text: "Your location is NOT tracked" }
                        InfoRow { text: "Only Wi‑Fi network information is accessed" }
                    }
                    SymbolText {
                        visible: root.viewState.isAuthorized
                        Layout.fillWidth: false
                        Layout.maximumWidth: permission.width
                        Layout.alignment: Qt.AlignHCenter
                        symbol: "checkmark.circle.fill"
                        symbolSize: 14
                        text: "Permission Granted"
                        textFont: Theme.calloutEmphasis
                        textColor: Theme.primaryText
                        tint: Theme.green
                        spacing: 6
                    }
                    PushButton {
                        visible: !root.viewState.isAuthorized
                        Layout.alignment: Qt.AlignHCenter
                        text: "Open System Settings"
                        onClicked: root.viewState.openSystemSettings()
                    }
                }
                OnboardingPage {
                    id: ready
                    step: OnboardingState.Ready
                    currentStep: root.currentStep
                    symbol: "sparkles"
                    tint: Theme.blue
                    title: "You're All Set!"
                    text: "Start monitoring your Wi‑Fi connection. Click the menu bar icon anytime to view diagnostics."

                    Card {
                        title: "Key Features"
                        hasShadow: false

                        SectionTitle { text: "Key Features:" }
                        FeatureList {
                            rows: [
                                ["wifi", "Wi‑Fi metrics: Signal, noise, link rate"],
                                ["network", "Performance: Ping, jitter, packet loss"],
                                ["globe", "DNS diagnostics & speed tests"],
                                ["chart.bar.fill", "Historical graphs & trends"]
                            ]
                        }
                    }
                }
            }
        }
        RowLayout {
            Layout.margins: 16
            spacing: 12

            PushButton {
                visible: root.viewState.canGoBack
                text: "Back"
                onClicked: root.viewState.goBack()
            }
            PushButton {
                visible: root.viewState.canSkip
                text: "Skip"
                onClicked: root.viewState.skip()
            }
            Item { Layout.fillWidth: true }
            PushButton {
                text: root.viewState.mainLabel
                prominent: true
                onClicked: root.viewState.goOn()
            }
        }
    }

    // A condition that is met.
    component InfoRow: SymbolText {
        symbol: "checkmark.circle.fill"
        tint: Theme.lightBlue
        textColor: Theme.secondaryText
    }
}
