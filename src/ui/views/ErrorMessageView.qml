import QtQuick
import QtQuick.Layouts
import Netvane

// What went wrong, as long as it does.
ColumnLayout {
    id: root

    required property ErrorMessageState viewState

    visible: viewState.message !== undefined

    Card {
        Layout.leftMargin: 16
        Layout.rightMargin: 16
        title: "Problem"

        RowLayout {
            spacing: 8

            Symbol {
                name: "exclamationmark.triangle.fill"
                size: 14
                color: Theme.orange
            }
            WrappedText {
                text: root.viewState.message ?? ""
                Accessible.role: Accessible.AlertMessage
            }
        }
    }
}
