// A button with a text.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Button {
    id: control

    /// For the lesser action: text without a filled ground.
    property bool plain
    /// For the action that is as important but changes nothing: a pale ground.
    property bool quiet
    /// For the action that takes something away.
    property bool destructive
    /// Looks as if it could not be used, but keeps the focus; whoever has the button then does nothing on a click.
    property bool resting
    readonly property bool dimmed: !enabled || resting

    readonly property color strongColor: destructive ? Theme.warning : Theme.accent

    implicitWidth: Math.max(120, contentItem.implicitWidth + 40)
    implicitHeight: Theme.touchSize

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    Accessible.role: Accessible.Button
    Accessible.name: text

    contentItem: PlainText {
        text: control.text
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.bodySize - 1
        font.weight: Font.DemiBold
        color: control.dimmed ? Theme.secondaryText
               : control.plain || control.quiet ? control.strongColor : Theme.accentText
    }

    background: Rectangle {
        radius: 10
        color: control.plain ? (control.down ? Theme.pressed : "transparent")
               : control.quiet ? (control.down ? Theme.line : Theme.background)
               : control.dimmed ? Theme.line
               : control.down ? Qt.darker(control.strongColor, 1.25) : control.strongColor

        FocusRing {
            control: control
            anchors.margins: -4
            ringColor: control.strongColor
        }
    }
}
