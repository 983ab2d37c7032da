// A row that shows what is chosen and opens the place where something else can be chosen.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.ItemDelegate {
    id: control

    property string description
    property string warning
    property string value

    focusPolicy: Qt.StrongFocus
    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.rowHeight, contentItem.implicitHeight + 24)
    leftPadding: Theme.margin
    rightPadding: Theme.margin

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    Accessible.name: text
    Accessible.description: value

    contentItem: Item {
        implicitHeight: Math.max(texts.implicitHeight, valueText.implicitHeight)

        RowTexts {
            id: texts

            anchors.left: parent.left
            anchors.right: valueText.left
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            title: control.text
            description: control.description
            warning: control.warning
            dimmed: !control.enabled
        }

        PlainText {
            id: valueText

            objectName: "value"
            anchors.right: mark.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width / 2)
            text: control.value
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize - 1
            horizontalAlignment: Text.AlignRight
            wrapMode: Text.Wrap
            maximumLineCount: 4
        }

        Icon {
            id: mark

            anchors.right: parent.right
            anchors.rightMargin: -4
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            visible: control.enabled
            name: "chevron"
            color: Theme.secondaryText
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: control.down ? Theme.pressed : "transparent"

        RowLine { row: control }
        FocusRing { control: control }
    }
}
