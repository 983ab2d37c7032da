// One page: its title above sections that scroll.
import QtQuick 2.15

FocusScope {
    id: page

    property alias title: titleText.text
    default property alias sections: area.items

    PlainText {
        id: titleText

        objectName: "pageTitle"
        x: Theme.margin + 4
        width: parent.width - 2 * x
        height: 64
        font.pixelSize: Theme.titleSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    ScrollArea {
        id: area

        objectName: "pageScroll"
        anchors.top: titleText.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sideMargin: Theme.margin
        endMargin: Theme.margin
        spacing: 18
    }
}
