// A row with a list of choices of which one is chosen.
import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Templates 2.15 as T

SettingRow {
    id: row

    /// Object name of the list; its entries are named after it, a dot and their position.
    property string name
    property var choices: []
    /// Position of what is chosen; -1 for none of the choices.
    property int position: -1
    /// Of the list, where the window has the room.
    property int wishedWidth: 240
    /// Shown when none of the choices is chosen.
    property string otherText: qsTr("Not a known choice")
    property color otherColor: Theme.warning

    signal chosen(int position)

    onVisibleChanged: if (!visible) combo.popup.close()

    T.ComboBox {
        id: combo

        objectName: row.name
        width: Math.min(row.wishedWidth, row.width * 0.6)
        height: Theme.touchSize
        leftPadding: 16
        rightPadding: 44
        model: row.choices
        currentIndex: row.position
        displayText: currentIndex >= 0 ? currentText : row.otherText

        onActivated: row.chosen(index)

        Accessible.name: row.title

        contentItem: PlainText {
            text: combo.displayText
            color: combo.currentIndex < 0 ? row.otherColor : Theme.text
            font.pixelSize: Theme.bodySize - 1
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }

        indicator: Icon {
            x: combo.width - width - 12
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            name: "unfold"
            color: Theme.secondaryText
        }

        background: Rectangle {
            radius: 10
            color: combo.down || combo.popup.visible ? Theme.pressed : Theme.background

            FocusRing {
                control: combo
                radius: 10
            }
        }

        delegate: PickerDelegate {
            objectName: row.name + "." + index
            text: modelData
            highlighted: combo.highlightedIndex === index
            chosen: combo.currentIndex === index
        }

        popup: ModalPopup {
            width: combo.width
            height: Math.min(combo.count * Theme.touchSize + 2 * padding,
                             (combo.Window.window ? combo.Window.window.height : 480) - 2 * margins)
            y: (combo.height - height) / 2
            margins: 12
            padding: 6

            onOpened: list.positionViewAtIndex(Math.max(0, combo.currentIndex), ListView.Center)

            contentItem: ListView {
                id: list

                clip: true
                implicitHeight: contentHeight
                model: combo.delegateModel
                currentIndex: combo.highlightedIndex
                highlightMoveDuration: 0
                boundsBehavior: Flickable.StopAtBounds

                ScrollMark { flickable: list }
            }
        }
    }
}
