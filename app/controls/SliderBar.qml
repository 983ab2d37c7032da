// A slider whose handle goes from whole number to whole number.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Slider {
    id: slider

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
            width: slider.visualPosition * (parent.width - slider.handle.width) + slider.handle.width / 2
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
