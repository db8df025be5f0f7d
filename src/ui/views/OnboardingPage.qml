import QtQuick
import QtQuick.Layouts
import Netvane

// One page of the introduction: a picture, a title and a text above the page's own content. It is
// centred, and slides in and out sideways.
ColumnLayout {
    id: root

    required property int step
    required property int currentStep
    required property string symbol
    required property color tint
    required property string title
    required property string text
    property real symbolSize: 48
    property font titleFont: Theme.title

    x: 24 + (step - currentStep) * 48
    y: Math.max(0, (parent.height - implicitHeight) / 2)
    width: parent.width - 48
    spacing: 14
    visible: opacity > 0
    enabled: step === currentStep
    opacity: enabled ? 1 : 0
    Accessible.role: Accessible.Grouping
    Accessible.name: title
    Behavior on x { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
    Behavior on opacity { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }

    Symbol {
        Layout.alignment: Qt.AlignHCenter
        name: root.symbol
        size: root.symbolSize
        color: root.tint
    }
    WrappedText {
        horizontalAlignment: Text.AlignHCenter
        text: root.title
        font: root.titleFont
        color: Theme.primaryText
        Accessible.role: Accessible.Heading
    }
    WrappedText {
        horizontalAlignment: Text.AlignHCenter
        text: root.text
        font: Theme.body
    }
}
