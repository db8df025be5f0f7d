import QtQuick
import QtQuick.Layouts
import Netvane

// What is measured towards one target.
Card {
    id: root

    required property PerformanceSectionState viewState

    title: viewState.title
    visible: viewState.isPresent

    RowLayout {
        Layout.bottomMargin: 4
        spacing: 8

        Symbol {
            name: root.viewState.icon
            size: 14
            color: Theme.blue
        }
        ColumnLayout {
            spacing: 0

            SectionTitle { text: root.viewState.title }
            WrappedText { text: root.viewState.subtitle }
        }
    }
    MetricCard { metric: root.viewState.cards[0] }
    MetricCard { metric: root.viewState.cards[1] }
    MetricCard { metric: root.viewState.cards[2] }
    MOSCard { mos: root.viewState.mosCard }
}
