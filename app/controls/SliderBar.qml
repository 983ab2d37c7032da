// A slider whose handle goes from whole number to whole number. The bar is filled from 0 where 0 lies between
// the ends, else from the lower end.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Slider {
    id: slider

    readonly property bool spansZero: from < 0 && to > 0

    height: 52
    padding: 12
    stepSize: 1
    snapMode: T.Slider.SnapAlways

    background: Item {
        x: slider.leftPadding
        y: slider.topPadding + (slider.availableHeight - height) / 2
        width: slider.availableWidth
        height: 8

        Rectangle {
            anchors.fill: parent
            radius: 4
            color: Theme.track
        }

        Rectangle {
            readonly property real valuePlace: place(slider.visualPosition)
            readonly property real startPlace: slider.spansZero
                                               ? place(-slider.from / (slider.to - slider.from)) : 0

            /// The middle of the handle when the slider is at this share of its way.
            function place(share) {
                return share * (parent.width - slider.handle.width) + slider.handle.width / 2;
            }

            objectName: slider.objectName + ".fill"
            x: Math.min(valuePlace, startPlace)
            width: Math.abs(valuePlace - startPlace)
            height: parent.height
            radius: 4
            color: Theme.accent
        }
    }

    handle: Rectangle {
        x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
        y: slider.topPadding + (slider.availableHeight - height) / 2
        width: 30
        height: 30
        radius: 15
        color: slider.pressed ? Theme.accentSoft : Theme.card
        border.width: 3
        border.color: Theme.accent
    }

    FocusRing { control: slider }
}
