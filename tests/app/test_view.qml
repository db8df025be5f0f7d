import QtQuick
import Netvane

// Something of a height that the test sets.
Item {
    required property int wantedHeight

    implicitHeight: wantedHeight
    PlainText { text: "A view" }
}
