import QtQuick
import Netvane

// Bars for counts, side by side at equal distances, with the count above each and an axis of whole
// numbers at the left. If labels would overlap, some are left out, but never that of the current
// bar.
Item {
    id: root

    // Values of type `chartBar`.
    required property var bars

    readonly property var marks: marksUpTo(Math.max(1, ...bars.map(bar => bar.count)))
    readonly property int topMark: marks[marks.length - 1]
    readonly property real plotLeft: widest(axis, marks) + 4
    readonly property real plotBottom: Math.round(height - axis.height - 4)
    readonly property real plotHeight: plotBottom - counts.height
    // The last label may be wider than the place of its bar.
    readonly property real overhang: Math.max(0, widest(axis, labels.slice(-1))
        - (width - plotLeft) / bars.length) / 2
    readonly property real pitch: (width - plotLeft - overhang) / Math.max(1, bars.length)
    readonly property var labels: bars.map(bar => bar.label)

    // Equal steps of 1, 2 or 5 times a power of ten, four at most.
    function marksUpTo(largest: int): var {
        const power = Math.pow(10, Math.floor(Math.log10(largest / 4)))
        const step = Math.max(1, [1, 2, 5, 10].find(each => largest <= each * power * 4) * power)
        return Array.from({ length: Math.ceil(largest / step) + 1 }, (_, index) => index * step)
    }
    function widest(metrics: FontMetrics, texts: var): real {
        return Math.max(0, ...texts.map(text => metrics.advanceWidth(text)))
    }
    function heightOf(count: int): real {
        return plotHeight * count / topMark
    }
    // The texts. Only every n-th one is kept, so that no two overlap.
    function thinnedOut(metrics: FontMetrics, texts: var): var {
        const stride = Math.max(1, Math.ceil((widest(metrics, texts) + 3) / Math.max(pitch, 1)))
        const current = Math.max(0, bars.findIndex(bar => bar.isCurrent))
        return texts.map((text, index) => index % stride === current % stride ? text : "")
    }
    function columns(): var {
        const names = thinnedOut(axis, labels)
        const numbers = thinnedOut(counts, bars.map(bar => bar.count))
        return bars.map((bar, index) => ({
            middle: plotLeft + (index + 0.5) * pitch, bottom: plotBottom,
            width: Math.max(1, Math.min(pitch * 0.7, 48)), height: heightOf(bar.count),
            color: bar.isCurrent ? Theme.blue : Theme.lightBlue,
            name: names[index], number: numbers[index]
        }))
    }

    FontMetrics {
        id: axis
        font: Theme.footnote
    }
    FontMetrics {
        id: counts
        font.family: Theme.footnote.family
        font.pixelSize: 9
    }
    Rows {
        model: root.marks.map(mark => ({
            text: mark, left: root.plotLeft, right: root.width - root.overhang,
            y: root.plotBottom - root.heightOf(mark)
        }))

        Rectangle {
            id: line

            required property var modelData

            x: modelData.left
            y: Math.round(modelData.y)
            width: modelData.right - modelData.left
            height: 1
            color: Theme.separator

            AxisText {
                anchors.right: parent.left
                anchors.rightMargin: 4
                anchors.verticalCenter: parent.top
                text: line.modelData.text
            }
        }
    }
    Rows {
        model: root.columns()

        Item {
            id: bar

            required property var modelData

            x: modelData.middle - width / 2
            y: modelData.bottom - height
            width: modelData.width
            height: modelData.height

            // Rounded at the upper end only: the lower end is on the axis.
            Item {
                anchors.fill: parent
                clip: true

                Rectangle {
                    width: parent.width
                    height: parent.height + 3
                    radius: Math.min(3, width / 2)
                    color: bar.modelData.color
                }
            }
            AxisText {
                anchors.bottom: parent.top
                anchors.horizontalCenter: parent.horizontalCenter
                text: bar.modelData.number
                font.pixelSize: 9
                color: Theme.secondaryText
            }
            AxisText {
                anchors.top: parent.bottom
                anchors.topMargin: 4
                anchors.horizontalCenter: parent.horizontalCenter
                text: bar.modelData.name
            }
        }
    }

    component AxisText: PlainText {
        font.family: Theme.footnote.family
        font.pixelSize: Theme.footnote.pixelSize
        color: Theme.tertiaryText
        Accessible.ignored: true
    }
}
