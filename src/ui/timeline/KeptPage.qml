pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// What the program remembers, and how to make it forget.
ScrollArea {
    id: root

    required property HistoryPages pages

    showsIndicator: true
    bottomPadding: 20

    ColumnLayout {
        x: 20
        width: parent.width - 40
        spacing: 16

        Card {
            padding: 20
            spacing: 10
            title: "What is kept"

            ToggleSwitch {
                Layout.fillWidth: true
                text: "Remember what happens to the connection"
                enabled: root.pages.canRecord
                checked: root.pages.isRecording
                onToggled: root.pages.isRecording = checked
            }
            WrappedText {
                visible: !root.pages.canRecord
                text: "This version of Netvane does not remember anything yet."
            }
            WrappedText {
                visible: root.pages.canRecord
                text: "Netvane keeps one line of values a minute for 30 days and what happened for 90 days, in a file of a few megabytes that only you can read. Nothing of it leaves this computer unless you save a page or a report."
            }
        }
        Card {
            padding: 20
            spacing: 10
            title: "Forget"

            SectionTitle { text: "Forget what is kept" }
            WrappedText {
                text: "What is forgotten cannot be brought back."
            }
            RowLayout {
                spacing: 8

                Confirmed {
                    label: "Forget this network"
                    question: "Really forget " + (root.pages.network || "this network") + "?"
                    enabled: root.pages.hasNetwork
                    onConfirmed: root.pages.forgetNetwork()
                }
                Confirmed {
                    label: "Forget everything"
                    question: "Really forget everything?"
                    onConfirmed: root.pages.forgetEverything()
                }
                Item { Layout.fillWidth: true }
            }
            WrappedText {
                visible: text !== ""
                text: root.pages.forgotten
                Accessible.role: Accessible.AlertMessage
            }
        }
    }

    // A button that asks before it does it.
    component Confirmed: ColumnLayout {
        id: asker

        required property string label
        required property string question
        property bool isAsking: false
        signal confirmed

        spacing: 6

        PlainText {
            Layout.maximumWidth: 280
            visible: asker.isAsking
            text: asker.question
            font: Theme.callout
            wrapMode: Text.Wrap
        }
        RowLayout {
            spacing: 6

            PushButton {
                Layout.preferredWidth: asker.isAsking ? 80 : 150
                text: asker.isAsking ? "Forget" : asker.label
                onClicked: {
                    if (asker.isAsking)
                        asker.confirmed()
                    asker.isAsking = !asker.isAsking
                }
            }
            PushButton {
                Layout.preferredWidth: 80
                visible: asker.isAsking
                text: "Keep"
                onClicked: asker.isAsking = false
            }
        }
    }
}
