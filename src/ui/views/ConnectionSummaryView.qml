import QtQuick
import QtQuick.Layouts
import Netvane

// The links of the path in one line, each with its grade. In a narrow window the gaps give way first;
// words that still do not fit go to a second line.
Card {
    id: root

    required property DashboardState viewState

    title: "Connection Summary"
    radius: 6
    hasShadow: false
    padding: 8

    Flow {
        id: line

        readonly property var links: root.viewState.connectionSummary
        property real wordsWidth

        Layout.fillWidth: true
        Layout.leftMargin: 12
        Layout.rightMargin: 12
        spacing: Math.max(9, Math.min(27, Math.floor((width - wordsWidth) / (links.length - 1))))

        // No binding: that misses the width of an item at times when several are made at once.
        onPositioningComplete: {
            let sum = 0
            for (let index = 0; index < children.length; ++index)
                sum += children[index].width
            wordsWidth = sum
        }

        Rows {
            model: line.links

            Item {
                id: item

                required property connectionItem modelData

                width: words.width
                height: words.height

                // In the gap before it, so not at the start of a line.
                PlainText {
                    readonly property real gap: (item.parent as Flow)?.spacing ?? 0

                    visible: item.x > 0
                    x: -(gap + width) / 2
                    text: "\u00b7"
                    font: Theme.caption
                    color: Theme.tertiaryText
                    Accessible.ignored: true
                }
                Row {
                    id: words
                    spacing: 4

                    PlainText {
                        text: item.modelData.name
                        font: Theme.footnote
                        color: Theme.secondaryText
                    }
                    PlainText {
                        text: item.modelData.grade
                        font: Theme.footnoteEmphasis
                        color: Theme.accents[item.modelData.accent]
                    }
                }
            }
        }
    }
}
