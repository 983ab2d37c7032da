// A row that shows a name and a value, for pages that only show.
import QtQuick 2.15

Item {
    id: row

    property string title
    property string value
    /// Object name of the value's text.
    property string valueName: "value"

    width: parent ? parent.width : 0
    implicitHeight: Math.max(Theme.touchSize, valueText.implicitHeight + 20)

    RowLine { row: row }

    PlainText {
        id: titleText

        x: Theme.margin
        width: Math.min(implicitWidth, row.width / 2)
        height: parent.height
        text: row.title
        wrapMode: Text.WordWrap
    }

    PlainText {
        id: valueText

        objectName: row.valueName
        anchors.left: titleText.right
        anchors.leftMargin: 16
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        height: parent.height
        text: row.value
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize - 1
        horizontalAlignment: Text.AlignRight
        wrapMode: Text.Wrap
        elide: Text.ElideNone
    }
}
