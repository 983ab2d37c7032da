// Something that is on or off. The whole row is the target of the finger.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.SwitchDelegate {
    id: control

    property string description

    focusPolicy: Qt.StrongFocus
    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.rowHeight, contentItem.implicitHeight + 24)
    leftPadding: Theme.margin
    rightPadding: Theme.margin + indicator.width + 16

    Accessible.name: text
    Accessible.description: description

    contentItem: Item {
        implicitHeight: texts.implicitHeight

        RowTexts {
            id: texts

            width: parent.width
            anchors.verticalCenter: parent.verticalCenter
            title: control.text
            description: control.description
        }
    }

    indicator: Rectangle {
        x: control.width - width - Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        width: 56
        height: 32
        radius: height / 2
        color: control.checked ? Theme.accent : Theme.track

        Behavior on color { ColorAnimation { duration: Theme.transitionTime } }

        Rectangle {
            x: 3 + control.visualPosition * (parent.width - width - 6)
            y: 3
            width: 26
            height: 26
            radius: 13
            color: Theme.card

            Behavior on x {
                enabled: !control.down
                NumberAnimation { duration: Theme.transitionTime; easing.type: Easing.OutCubic }
            }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: control.down ? Theme.pressed : "transparent"

        RowLine { row: control }
        FocusRing { control: control }
    }
}
