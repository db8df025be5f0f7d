import QtQuick
import QtQuick.Layouts
import Netvane

// The measurements of one target.
Card {
    id: root

    required property performanceSection section

    title: section.title
    visible: section.isPresent

    RowLayout {
        Layout.bottomMargin: 4
        spacing: 8

        Symbol {
            name: root.section.icon
            size: 14
            color: Theme.blue
        }
        ColumnLayout {
            spacing: 0

            SectionTitle { text: root.section.title }
            WrappedText { text: root.section.subtitle }
        }
    }
    MetricCard { metric: root.section.cards[0]; title: root.title + " " + metric.label }
    MetricCard { metric: root.section.cards[1]; title: root.title + " " + metric.label }
    MetricCard { metric: root.section.cards[2]; title: root.title + " " + metric.label }
    MOSCard { mos: root.section.mosCard }
}
