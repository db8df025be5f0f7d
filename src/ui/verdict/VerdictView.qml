pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// Everything about the verdict, in a window of its own.
FocusScope {
    id: root

    required property VerdictDetails viewState

    implicitWidth: 600
    implicitHeight: 720
    focus: true

    Binding {
        target: root.viewState
        property: "isShown"
        value: root.Window.visibility !== Window.Hidden && root.Window.visibility !== Window.Minimized
    }
    ScrollArea {
        objectName: "verdict-content"
        anchors.fill: parent
        anchors.bottomMargin: footer.height
        focus: true
        showsIndicator: true
        bottomPadding: 24

        ColumnLayout {
            id: column
            x: Math.round((parent.width - width) / 2)
            y: 24
            width: Math.min(parent.width - 48, 720)
            spacing: 20

            RowLayout {
                spacing: 14

                Symbol {
                    Layout.alignment: Qt.AlignTop
                    name: root.viewState.symbol
                    size: 32
                    color: Theme.marks[root.viewState.mark]
                }
                ColumnLayout {
                    spacing: 6

                    WrappedText {
                        text: root.viewState.sentence
                        font: Theme.title
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
                        color: Theme.tertiaryText
                    }
                }
            }
            Card {
                visible: root.viewState.chain.length > 0
                title: "The way to the internet"
                padding: 16

                ChainView { links: root.viewState.chain }
            }
            Details {
                title: "What was measured"
                rows: root.viewState.evidence
                ages: root.viewState.ages
            }
            Details {
                title: "Also considered"
                rows: root.viewState.others
            }
        }
    }
    Item {
        id: footer
        anchors.bottom: parent.bottom
        width: parent.width
        height: 52

        Divider { width: parent.width }
        PushButton {
            id: timeLine
            x: column.x
            anchors.verticalCenter: parent.verticalCenter
            width: 104
            text: "Time line"
            symbol: "chart.line.uptrend.xyaxis"
            onClicked: root.viewState.showTimeLine()

            HoverTip { text: "Shows what happened in the last 30 days" }
        }
        PushButton {
            anchors.left: timeLine.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            width: 84
            text: "The air"
            symbol: "wifi"
            onClicked: root.viewState.showAir()

            HoverTip { text: "Shows the link, the channels and the networks around" }
        }
        PushButton {
            x: column.x + column.width - width
            anchors.verticalCenter: parent.verticalCenter
            width: 96
            text: root.viewState.isCopied ? "Copied" : "Copy"
            symbol: root.viewState.isCopied ? "checkmark.circle.fill" : "doc.on.doc"
            onClicked: root.viewState.copy()

            HoverTip { text: "Copies all of this as plain text" }
        }
    }

    component Details: ColumnLayout {
        id: details

        required property string title
        // Values of type `detailRow`, and the ages of those that have one.
        required property var rows
        property var ages: []

        visible: rows.length > 0
        spacing: 8

        SectionTitle {
            text: details.title
            font: Theme.bodyEmphasis
        }
        Card {
            title: details.title
            spacing: 8
            Accessible.role: Accessible.List

            Rows {
                model: details.rows

                DetailLine { age: details.ages[index] ?? "" }
            }
        }
    }
}
