// A line to type into.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.TextField {
    id: field

    property string hint

    implicitHeight: Theme.touchSize
    leftPadding: 16
    rightPadding: 16
    verticalAlignment: TextInput.AlignVCenter
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentText
    font.pixelSize: Theme.bodySize
    selectByMouse: true

    Accessible.name: hint

    cursorDelegate: Rectangle {
        id: cursor

        width: 2
        color: Theme.accent
        visible: field.activeFocus
    }

    PlainText {
        x: field.leftPadding
        width: field.width - field.leftPadding - field.rightPadding
        height: field.height
        visible: field.length === 0 && field.preeditText === ""
        text: field.hint
        color: Theme.secondaryText
    }

    background: Rectangle {
        radius: 10
        color: Theme.background
        border.width: field.activeFocus ? 2 : 0
        border.color: Theme.accent
    }
}
