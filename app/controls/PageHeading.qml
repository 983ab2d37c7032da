// The title of a page, with room at its right for what the page as a whole can do.
import QtQuick 2.15

Item {
    property alias title: titleText.text
    property alias action: actionPlace.data

    width: parent ? parent.width : 0
    height: 64

    PlainText {
        id: titleText

        objectName: "pageTitle"
        x: Theme.margin + 4
        width: parent.width - 2 * x - actionPlace.width
        height: parent.height
        font.pixelSize: Theme.titleSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    Item {
        id: actionPlace

        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        y: 8
        width: childrenRect.width
        height: childrenRect.height
    }
}
