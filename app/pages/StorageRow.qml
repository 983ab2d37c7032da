// One file system of the device: how much of it is used.
import QtQuick 2.15
import "../controls"

Item {
    id: row

    /// An object with the members of a storage row.
    property var storage
    property string valueName

    width: parent ? parent.width : 0
    implicitHeight: column.implicitHeight + 28

    RowLine { row: row }

    Column {
        id: column

        x: Theme.margin
        y: 14
        width: parent.width - 2 * x
        spacing: 8

        Item {
            width: parent.width
            height: Math.max(place.implicitHeight, free.implicitHeight)

            PlainText {
                id: place

                objectName: row.valueName + ".mountPoint"
                width: parent.width - free.width - 16
                text: row.storage.mountPoint
                wrapMode: Text.Wrap
            }

            PlainText {
                id: free

                objectName: row.valueName + ".available"
                anchors.right: parent.right
                text: qsTr("%1 available").arg(row.storage.available)
                font.weight: Font.DemiBold
                font.pixelSize: Theme.bodySize - 1
            }
        }

        Rectangle {
            width: parent.width
            height: 8
            radius: 4
            color: Theme.track

            Rectangle {
                width: parent.width * Math.min(100, row.storage.usedPercent) / 100
                height: parent.height
                radius: 4
                color: row.storage.usedPercent >= 90 ? Theme.warning : Theme.accent
            }
        }

        PlainText {
            objectName: row.valueName + ".used"
            width: parent.width
            text: qsTr("%1 of %2 used (%3)")
                  .arg(row.storage.used).arg(row.storage.size).arg(row.storage.fileSystem)
            color: Theme.secondaryText
            font.pixelSize: Theme.smallSize
            wrapMode: Text.Wrap
        }
    }
}
