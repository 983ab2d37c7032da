// One page: its title above sections that scroll.
import QtQuick 2.15

FocusScope {
    id: page

    property alias title: heading.title
    default property alias sections: area.items
    /// What the page as a whole can do, at the right of the title.
    property alias action: heading.action

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

    PageHeading { id: heading }

    ScrollArea {
        id: area

        objectName: "pageScroll"
        anchors.top: heading.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        sideMargin: Theme.margin
        endMargin: Theme.margin
        spacing: 18
    }
}
