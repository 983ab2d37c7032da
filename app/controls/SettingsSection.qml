// Rows that belong together, on one card below a heading.
import QtQuick 2.15

Column {
    id: section

    property string heading
    default property alias rows: rowColumn.data

    /// Gives rows that were just made or taken away their places at once, and not with the next picture.
    function layOut() {
        rowColumn.forceLayout();
    }

    width: parent ? parent.width : 0
    spacing: 8

    PlainText {
        leftPadding: 4
        visible: section.heading !== ""
        text: section.heading
        color: Theme.secondaryText
        font.pixelSize: Theme.smallSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    Rectangle {
        width: parent.width
        height: rowColumn.height
        radius: Theme.radius
        color: Theme.card

        Column {
            id: rowColumn

            width: parent.width
        }
    }
}
