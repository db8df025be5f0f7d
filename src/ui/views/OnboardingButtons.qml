import QtQuick
import QtQuick.Layouts
import Netvane

// The ways from one page of the introduction to another.
RowLayout {
    id: root

    required property OnboardingState viewState

    spacing: 12

    PushButton {
        visible: root.viewState.canGoBack
        text: "Back"
        onClicked: root.viewState.goBack()
    }
    PushButton {
        visible: root.viewState.canSkip
        text: "Skip"
        onClicked: root.viewState.skip()
    }
    Item { Layout.fillWidth: true }
    PushButton {
        text: root.viewState.mainLabel
        prominent: true
        onClicked: root.viewState.goOn()
    }
}
