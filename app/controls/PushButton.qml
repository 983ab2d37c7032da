// A button with a text.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Button {
    id: control

    /// For the lesser action: text without a filled ground.
    property bool plain

    implicitWidth: Math.max(120, contentItem.implicitWidth + 40)
    implicitHeight: Theme.touchSize

    contentItem: PlainText {
        text: control.text
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.bodySize - 1
        font.weight: Font.DemiBold
        color: !control.enabled ? Theme.secondaryText : control.plain ? Theme.accent : Theme.accentText
    }

    background: Rectangle {
        radius: 10
        color: control.plain ? (control.down ? Theme.pressed : "transparent")
               : !control.enabled ? Theme.line : control.down ? Theme.accentPressed : Theme.accent

        FocusRing {
            control: control
            anchors.margins: -4
        }
    }
}
