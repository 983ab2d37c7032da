// A row of short values side by side, each below its name.
import QtQuick 2.15

Item {
    id: cells

    property string title
    property var names: []
    /// As many as there are names, or none where the values cannot be told apart.
    property var values: []
    /// Shown instead of the values when there are none.
    property string replacement
    /// Positions of the values that are shown as a warning.
    property var marked: []
    /// Cells are named after this, a dot and their position.
    property string valueName

    width: parent ? parent.width : 0
    implicitHeight: column.implicitHeight + 28

    RowLine { row: cells }

    Column {
        id: column

        x: Theme.margin
        y: 14
        width: parent.width - 2 * x
        spacing: 10

        PlainText {
            width: parent.width
            visible: text !== ""
            text: cells.title
        }

        Row {
            width: parent.width
            visible: cells.values.length > 0

            Repeater {
                model: cells.names

                Column {
                    width: parent.width / cells.names.length
                    spacing: 2

                    PlainText {
                        objectName: cells.valueName + "." + index
                        width: parent.width - 8
                        text: cells.values[index] || ""
                        color: cells.marked.indexOf(index) >= 0 ? Theme.warning : Theme.text
                        font.pixelSize: Theme.bodySize - 1
                        font.weight: Font.DemiBold
                        wrapMode: Text.Wrap
                    }

                    PlainText {
                        width: parent.width - 8
                        text: modelData
                        color: Theme.secondaryText
                        font.pixelSize: Theme.smallSize
                        wrapMode: Text.WordWrap
                    }
                }
            }
        }

        PlainText {
            objectName: cells.valueName
            width: parent.width
            visible: cells.values.length === 0
            text: cells.replacement
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize - 1
            wrapMode: Text.Wrap
        }
    }
}
