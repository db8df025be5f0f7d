import QtQuick
import QtQuick.Layouts
import Netvane

// The current error message.
Card {
    id: root

    required property DashboardState viewState

    visible: viewState.errorMessage !== undefined
    title: "Problem"

    RowLayout {
        spacing: 8

        Symbol {
            name: "exclamationmark.triangle.fill"
            size: 14
            color: Theme.orange
        }
        WrappedText {
            text: root.viewState.errorMessage ?? ""
            Accessible.role: Accessible.AlertMessage
        }
    }
}
