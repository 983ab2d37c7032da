// A button that steps once when it is touched, and again and again while it is held.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.AbstractButton {
    id: control

    property string iconName
    /// Steps since the finger came down.
    property int steps
    /// When steps repeat: after the first time, and from then on, in milliseconds.
    property int delay: 400
    property int pause: 60

    signal step()
    /// The finger is away.
    signal ended()

    // The slider beside it takes the keys.
    focusPolicy: Qt.NoFocus
    implicitWidth: 56
    implicitHeight: Theme.touchSize

    onPressedChanged: {
        if (pressed) {
            steps = 0;
            repetition.interval = delay;
            repetition.start();
        } else {
            repetition.stop();
            ended();
        }
    }
    onClicked: {
        if (steps > 0)
            return;
        step();
        ended();
    }

    Accessible.role: Accessible.Button
    Accessible.name: text

    Timer {
        id: repetition

        repeat: true
        onTriggered: {
            interval = control.pause;
            ++control.steps;
            control.step();
        }
    }

    background: Rectangle {
        radius: 10
        color: control.down ? Theme.line : Theme.background

        Icon {
            anchors.centerIn: parent
            name: control.iconName
            color: control.enabled ? Theme.accent : Theme.track
        }
    }
}
