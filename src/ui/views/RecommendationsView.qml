import QtQuick
import QtQuick.Layouts
import Netvane

// Advice, if there is any.
Card {
    id: root

    required property DashboardState viewState

    visible: viewState.recommendations.length > 0
    title: "Recommendations"

    SectionTitle { text: "Recommendations" }
    ColumnLayout {
        spacing: 8

        Rows {
            model: root.viewState.recommendations

            SymbolText {
                required property string modelData

                spacing: 8
                symbol: "lightbulb.fill"
                symbolBox: 20
                tint: Theme.orange
                text: modelData
                textColor: Theme.secondaryText
            }
        }
    }
}
