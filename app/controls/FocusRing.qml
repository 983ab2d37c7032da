// The frame around the control that the keyboard would act on.
import QtQuick 2.15

Rectangle {
    property Item control
    property color ringColor: Theme.accent

    anchors.fill: parent
    visible: control !== null && control.visualFocus
    color: "transparent"
    radius: Theme.radius
    border.width: 3
    border.color: ringColor
}
