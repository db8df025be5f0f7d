import QtQuick
import Netvane

// What the popover shows: the introduction, the settings, or the dashboard. The window paints the
// background.
Item {
    id: root

    required property PopoverState viewState

    readonly property real wantedHeight: {
        switch (viewState.content) {
        case PopoverState.Onboarding:
            return 500
        case PopoverState.Settings:
            return Math.min(500, settings.implicitHeight)
        default:
            return Math.min(650, column.implicitHeight + 16) + main.y
        }
    }

    implicitWidth: 420
    implicitHeight: wantedHeight
    focus: true
    // If it is not handled here, it closes the window.
    Keys.onEscapePressed: event => event.accepted = viewState.goBack()

    VerdictStrip {
        id: strip
        x: 16
        y: 12
        width: parent.width - 32
        visible: main.visible && main.opacity > 0
        verdict: root.viewState.verdict
    }
    ScrollArea {
        id: main
        objectName: "main-content"
        anchors.fill: parent
        anchors.topMargin: strip.y + strip.height
        visible: root.viewState.content === PopoverState.Dashboard
        opacity: root.viewState.content === PopoverState.Onboarding ? 0 : 1
        focus: visible

        Behavior on opacity { Fading { } }

        DashboardColumn {
            id: column
            objectName: "dashboard"
            x: 16
            y: 16
            width: parent.width - 32
            viewState: root.viewState
        }
    }
    OnDemand {
        id: settings
        objectName: "settings"
        isWanted: root.viewState.content === PopoverState.Settings
        view: "SettingsView.qml"
        viewState: root.viewState.settings
    }
    OnDemand {
        objectName: "onboarding"
        opacity: isWanted ? 1 : 0
        isWanted: root.viewState.content === PopoverState.Onboarding
        view: "OnboardingView.qml"
        viewState: root.viewState.onboarding

        Behavior on opacity { Fading { } }
    }

    // What comes with a change of the introduction fades in, and what it replaces is gone at once: two
    // screens over each other cannot be read. The settings come and go without.
    component Fading: NumberAnimation {
        duration: 200
        easing.type: Easing.InOutQuad
    }

    // A screen that exists only while it is shown: most users open only the dashboard.
    component OnDemand: Loader {
        property bool isWanted: false
        required property string view
        required property var viewState

        anchors.fill: parent
        visible: isWanted
        focus: isWanted
        onIsWantedChanged: {
            if (isWanted)
                setSource(view, { viewState: viewState, focus: true })
            else
                source = ""
        }
    }
}
