// A column of items that scrolls when it is higher than the place for it. Moving the focus by keyboard
// scrolls to the item that has it.
import QtQuick 2.15
import QtQuick.Window 2.15

Flickable {
    id: area

    default property alias items: column.data
    property alias spacing: column.spacing
    /// Free room at the sides of the items and below the last of them.
    property int sideMargin
    property int endMargin
    readonly property Item focusedItem: Window.activeFocusItem

    function scrollTo(item) {
        var top = item.mapToItem(column, 0, 0).y - 12;
        var bottom = top + item.height + 24;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.max(0, Math.min(bottom, contentHeight) - height);
    }

    /// By almost what is seen, down for 1 and up for -1.
    function turnPage(pages) {
        var end = Math.max(0, contentHeight - height);
        contentY = Math.max(0, Math.min(end, contentY + pages * (height - 40)));
    }

    function holds(item) {
        for (var above = item; above; above = above.parent) {
            if (above === column)
                return true;
        }
        return false;
    }

    onFocusedItemChanged: {
        if (visible && focusedItem && focusedItem.visualFocus === true && holds(focusedItem))
            scrollTo(focusedItem);
    }

    clip: true
    contentWidth: width
    contentHeight: column.height + endMargin
    boundsBehavior: Flickable.StopAtBounds

    Column {
        id: column

        x: area.sideMargin
        width: area.width - 2 * area.sideMargin
    }

    ScrollMark { flickable: area }
}
