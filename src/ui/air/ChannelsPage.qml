pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Netvane

// Each band with the advice for it.
ScrollArea {
    id: root

    required property AirState air

    focus: true
    activeFocusOnTab: true
    showsIndicator: true
    bottomPadding: 20
    Accessible.role: Accessible.Grouping
    Accessible.name: "Channels"

    ColumnLayout {
        x: 20
        width: parent.width - 40
        spacing: 16

        Rows {
            // Not the bands themselves: they change with every reading.
            model: root.air.bands.length

            Card {
                id: card

                required property int index
                readonly property airBand shown: root.air.bands[index]

                title: shown.name
                padding: 16
                spacing: 8

                SectionTitle { text: card.shown.name }
                WrappedText {
                    text: card.shown.advice
                    font: Theme.callout
                }
                AirPlot {
                    Layout.fillWidth: true
                    Layout.preferredHeight: 190
                    air: root.air
                    band: card.shown.band
                    ownColor: Theme.blue
                    otherColor: Theme.secondaryText
                    gridColor: Theme.separator
                    textColor: Theme.tertiaryText
                    surface: Theme.cardBackground
                    font: Theme.footnote
                    Accessible.role: Accessible.Chart
                    Accessible.name: card.shown.summary
                }
            }
        }
        WrappedText {
            visible: root.air.bands.length > 0
            text: "Each network is as wide as what it covers and as high as its signal in dBm. Yours has a thick line. Grey stripes: not allowed here. Pale: not heard for two minutes."
            color: Theme.tertiaryText
        }
    }
}
