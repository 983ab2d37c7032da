// A row of a section that shows something, with room for a control at its right end.
import QtQuick 2.15

Item {
    id: row

    property alias title: texts.title
    property alias description: texts.description
    property alias warning: texts.warning
    property alias descriptionName: texts.descriptionName
    default property alias control: controlPlace.data

    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.rowHeight, texts.implicitHeight + 24)

    RowLine { row: row }

    RowTexts {
        id: texts

        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: controlPlace.left
        anchors.rightMargin: controlPlace.width > 0 ? 16 : 0
        anchors.verticalCenter: parent.verticalCenter
    }

    Item {
        id: controlPlace

        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        width: childrenRect.width
        height: childrenRect.height
    }
}
