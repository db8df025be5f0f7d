import QtQuick
import Netvane

// What the radio does and what it hears, in a window of its own.
FocusScope {
    id: root

    required property AirState viewState
    property int page: 0

    function load() {
        content.setSource(["ChannelsPage.qml", "NetworksPage.qml", "LinkPage.qml", "RoamingPage.qml"][page],
            { air: viewState })
    }

    implicitWidth: 900
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
        choices: ["Channels", "Networks", "Link", "Roaming"]
        current: root.page
        Accessible.name: "Pages"
        onChosen: index => root.page = index
    }
    PushButton {
        id: scan
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: pages.verticalCenter
        width: 96
        text: root.viewState.isScanning ? "Scanning" : "Scan"
        enabled: !root.viewState.isScanning
        onClicked: root.viewState.scan()

        HoverTip { text: "Looks for networks on all channels once. The link pauses for some seconds." }
    }
    PlainText {
        id: note
        x: 20
        anchors.top: pages.bottom
        anchors.topMargin: visible ? 8 : 0
        width: parent.width - 40
        height: visible ? implicitHeight : 0
        visible: text !== ""
        text: (root.viewState.problem + " " + root.viewState.scanNote).trim()
        font: Theme.callout
        color: Theme.secondaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        Accessible.role: Accessible.AlertMessage
    }
    Loader {
        id: content
        anchors.top: note.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        focus: true
    }
}
