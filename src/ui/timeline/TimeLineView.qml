import QtQuick
import Netvane

// What happened to the connection, in a window of its own.
FocusScope {
    id: root

    required property TimeLineState viewState
    property int page: 0

    function load() {
        if (page === 0)
            content.setSource("TimeLinePage.qml", { timeLine: viewState })
        else
            content.setSource(["BadHoursPage.qml", "OutagesPage.qml", "KeptPage.qml"][page - 1],
                { pages: viewState.pages })
    }

    implicitWidth: 980
    implicitHeight: 760
    focus: true
    onPageChanged: load()
    Component.onCompleted: load()

    Binding {
        target: root.viewState
        property: "isShown"
        value: root.Window.visibility !== Window.Hidden && root.Window.visibility !== Window.Minimized
    }
    ChoiceBar {
        id: pages
        x: 20
        y: 14
        choices: ["Time line", "When is it bad?", "Outages", "What is kept"]
        current: root.page
        Accessible.name: "Pages"
        onChosen: index => root.page = index
    }
    Loader {
        id: content
        anchors.top: pages.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        focus: true
    }
}
