// One page: its title above sections that scroll.
import QtQuick 2.15

FocusScope {
    id: page

    property alias title: titleText.text
    default property alias sections: area.items
    /// What the page as a whole can do, at the right of the title.
    property alias action: actionPlace.data

    function scrollToTop() {
        area.contentY = 0;
    }

    /// As far as needed to see the item.
    function reveal(item) {
        area.scrollTo(item);
    }

    // Where nothing on the page takes these keys, and where there is nothing to take the focus.
    Keys.onPressed: {
        var pages = event.key === Qt.Key_PageDown ? 1 : event.key === Qt.Key_PageUp ? -1 : 0;
        if (pages !== 0) {
            area.turnPage(pages);
            event.accepted = true;
        }
    }

    PlainText {
        id: titleText

        objectName: "pageTitle"
        x: Theme.margin + 4
        width: parent.width - 2 * x - actionPlace.width
        height: 64
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
