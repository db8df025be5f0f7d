pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// When nothing went through, and the page about it for the provider.
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
            title: "Page for your provider"

            SectionTitle { text: "Page for your provider" }
            WrappedText {
                text: "What a support desk needs: the outages behind your router, how the line did and how it was measured."
            }
            RowLayout {
                spacing: 8

                PushButton {
                    Layout.preferredWidth: 120
                    text: "Save as PDF"
                    symbol: "doc.text.fill"
                    onClicked: root.pages.savePdf()
                }
                PushButton {
                    Layout.preferredWidth: 150
                    text: "Save as Markdown"
                    symbol: "doc.text.fill"
                    onClicked: root.pages.saveMarkdown()
                }
                WrappedText {
                    text: root.pages.saved
                    Accessible.role: Accessible.AlertMessage
                }
            }
        }
        Card {
            padding: 20
            spacing: 10
            title: "Outages"
            Accessible.role: Accessible.List

            SectionTitle { text: "Outages" }
            WrappedText {
                text: root.pages.outageSummary
            }
            Rows {
                model: root.pages.outages

                DetailLine {}
            }
        }
    }
}
