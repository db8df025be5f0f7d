import QtQuick
import QtQuick.Layouts
import Netvane

// What is wrong, in a sentence, above a dashboard. It always has the place of two lines, so that
// nothing below it moves when the sentence changes.
PlainButton {
    id: root

    required property VerdictState verdict

    readonly property color tint: Theme.marks[verdict.mark]
    readonly property bool isQuiet: verdict.mark === Mark.Fine || verdict.mark === Mark.Unknown

    implicitHeight: 52
    horizontalPadding: 12
    // Not `text`, which may hold nothing from outside.
    Accessible.name: "Verdict: " + verdict.sentence
    Accessible.description: verdict.advice
    onClicked: verdict.explain()

    contentItem: RowLayout {
        spacing: 10

        Symbol {
            name: root.verdict.symbol
            size: 20
            color: root.tint
        }
        PlainText {
            Layout.fillWidth: true
            text: root.verdict.sentence
            font: root.isQuiet ? Theme.callout
                : text.length > 72 ? Theme.captionEmphasis : Theme.calloutEmphasis
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            maximumLineCount: 2
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true

            HoverTip { text: (parent as PlainText).truncated ? root.verdict.sentence : "" }
        }
        Symbol {
            name: "chevron.right"
            size: 11
            color: Theme.tertiaryText
        }
    }
    background: CardBackground {
        hasShadow: root.isQuiet
        color: {
            const base = root.isQuiet
                ? Theme.cardBackground : Qt.tint(Theme.cardBackground, Qt.alpha(root.tint, 0.1))
            return root.hovered ? Qt.tint(base, Qt.alpha(Theme.primaryText, 0.04)) : base
        }

        Rectangle {
            anchors.fill: parent
            radius: 10
            color: "transparent"
            border.color: Qt.alpha(root.tint, 0.45)
            visible: !root.isQuiet
        }
        FocusRing { control: root; radius: 12 }
    }
}
