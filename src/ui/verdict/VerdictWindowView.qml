import QtQuick
import QtQuick.Layouts
import Netvane

// "What is wrong?": the verdict, what to do, and what it rests on.
Item {
    id: root

    required property VerdictState viewState

    implicitWidth: 600
    implicitHeight: 560
    focus: true
    Keys.onEscapePressed: Window.window.close()

    Binding {
        target: root.viewState
        property: "isShown"
        value: root.Window.visibility !== Window.Hidden
    }
    ScrollArea {
        objectName: "main-content"
        anchors.fill: parent
        focus: true
        showsIndicator: true
        bottomPadding: 24

        ColumnLayout {
            x: 24
            y: 24
            width: parent.width - 48
            spacing: 20

            RowLayout {
                spacing: 14

                Symbol {
                    Layout.alignment: Qt.AlignTop
                    Layout.topMargin: 2
                    name: root.viewState.symbol
                    color: Theme.accents[root.viewState.accent]
                    size: 30
                }
                ColumnLayout {
                    spacing: 6

                    WrappedText {
                        text: root.viewState.sentence
                        font: Theme.title2
                        color: Theme.primaryText
                        Accessible.role: Accessible.Heading
                    }
                    WrappedText {
                        visible: text !== ""
                        text: root.viewState.advice
                        font: Theme.body
                        color: Theme.primaryText
                    }
                    WrappedText {
                        visible: text !== ""
                        text: root.viewState.since
                    }
                }
            }
            VerdictChain {
                Layout.fillWidth: true
                chain: root.viewState.chain
            }
            Lines {
                title: "What was measured"
                lines: root.viewState.evidence
            }
            Lines {
                title: "Also considered"
                lines: root.viewState.others
            }
            PushButton {
                objectName: "copy-verdict"
                text: root.viewState.copyLabel
                onClicked: root.viewState.copy()
            }
        }
    }

    component Lines: ColumnLayout {
        id: list

        required property string title
        required property var lines

        visible: lines.length > 0
        spacing: 6

        PlainText {
            text: list.title
            font: Theme.headline
            Accessible.role: Accessible.Heading
        }
        Repeater {
            model: list.lines

            WrappedText {
                required property string modelData
                text: modelData
                font: Theme.callout
            }
        }
    }
}
