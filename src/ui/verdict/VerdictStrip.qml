import QtQuick
import QtQuick.Layouts
import Netvane

// One sentence that says whether all is well, and who is to blame if not. A click opens the details.
PlainButton {
    id: root

    required property VerdictState verdict

    readonly property color tint: Theme.accents[verdict.accent]
    readonly property bool isQuiet: verdict.symbol === "checkmark.circle.fill"

    objectName: "verdict-strip"
    horizontalPadding: 12
    verticalPadding: 10
    Accessible.name: "Verdict: " + verdict.sentence
    Accessible.description: verdict.advice
    onClicked: verdict.openDetails()

    contentItem: RowLayout {
        spacing: 10

        Symbol {
            name: root.verdict.symbol
            color: root.tint
            size: 18
        }
        PlainText {
            Layout.fillWidth: true
            text: root.verdict.sentence
            font: root.isQuiet ? Theme.callout : Theme.calloutEmphasis
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        Symbol {
            name: "chevron.right"
            color: Theme.secondaryText
            size: 12
        }
    }
    background: Rectangle {
        radius: 10
        color: Qt.tint(Theme.cardBackground,
                       Qt.alpha(root.tint, (root.isQuiet ? 0.06 : 0.14) + (root.hovered ? 0.05 : 0)))
        border.width: 1
        border.color: Qt.alpha(root.tint, root.isQuiet ? 0.25 : 0.6)
        FocusRing { control: root }
    }
}
