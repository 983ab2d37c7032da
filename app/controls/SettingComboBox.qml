// A setting with a list of choices. The stored value is the position of the choice, or the entry of
// `values` at that position where other values are stored.
import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Templates 2.15 as T

SettingRow {
    id: row

    property string settingKey
    property var fallback
    property var choices: []
    property var values: choices.map(function (choice, position) { return position; })
    /// What is stored, as far as this page knows.
    property var stored: fallback

    function refresh() {
        var value = Preferences.read(settingKey, fallback);
        stored = typeof values[0] === "number" ? Preferences.asWholeNumber(value) : Preferences.asText(value);
        combo.currentIndex = values.indexOf(stored);
    }

    function storeChoice(position) {
        stored = values[position];
        Preferences.change(settingKey, stored);
    }

    onVisibleChanged: {
        if (visible)
            refresh();
        else
            combo.popup.close();
    }
    Component.onCompleted: refresh()

    T.ComboBox {
        id: combo

        objectName: row.settingKey
        width: Math.min(240, row.width / 2)
        height: Theme.touchSize
        leftPadding: 16
        rightPadding: 44
        model: row.choices
        displayText: currentIndex >= 0 ? currentText
                     : typeof row.stored === "string" && row.stored !== "" ? row.stored
                     : qsTr("Not a known choice")

        onActivated: row.storeChoice(index)

        Accessible.name: row.title

        contentItem: PlainText {
            text: combo.displayText
            color: combo.currentIndex < 0 ? Theme.warning : Theme.text
            font.pixelSize: Theme.bodySize - 1
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
            objectName: row.settingKey + "." + index
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
