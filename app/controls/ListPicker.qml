// Picks one entry of a long list, which can be narrowed by typing.
import QtQuick 2.15
import Corvanta.SettingsApplication 1.0

PickerPopup {
    id: picker

    property string hint
    property var names: []
    /// Position of the entry that is picked now; -1 for none.
    property int current: -1
    /// Entries are named after this, a dot and their position.
    property string entryName

    signal picked(int position)

    wishedWidth: 640

    onAboutToShow: {
        search.clear();
        list.show("");
    }
    // Only now the list has its height.
    onOpened: {
        list.currentIndex = current;
        list.positionViewAtIndex(Math.max(0, current), ListView.Center);
        search.forceActiveFocus(Qt.TabFocusReason);
    }

    contentItem: FocusScope {
        SearchField {
            id: search

            objectName: picker.entryName + ".search"
            x: 8
            width: parent.width - 16
            hint: picker.hint
            onTextEdited: list.show(text)

            Keys.onDownPressed: list.take()
            Keys.onReturnPressed: list.take()
            Keys.onEnterPressed: list.take()
        }

        ListView {
            id: list

            function show(text) {
                model = ListSearch.positions(picker.names, text);
                currentIndex = model.length > 0 && text !== "" ? 0 : -1;
                positionViewAtBeginning();
            }

            /// Takes the focus, for keys that move in the list.
            function take() {
                if (count === 0)
                    return;
                if (currentIndex < 0)
                    currentIndex = 0;
                forceActiveFocus(Qt.TabFocusReason);
            }

            objectName: picker.entryName + ".list"
            anchors.top: search.bottom
            anchors.topMargin: 8
            anchors.bottom: parent.bottom
            width: parent.width
            clip: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
            reuseItems: true

            delegate: PickerDelegate {
                objectName: picker.entryName + "." + modelData
                x: 4
                text: picker.names[modelData]
                highlighted: ListView.isCurrentItem && (ListView.view.activeFocus || search.text !== "")
                chosen: picker.current === modelData
                onClicked: {
                    picker.close();
                    picker.picked(modelData);
                }
            }

            ScrollMark { flickable: list }
        }

        PlainText {
            objectName: picker.entryName + ".none"
            anchors.centerIn: list
            visible: list.count === 0
            text: qsTr("Nothing in the list fits.")
            color: Theme.secondaryText
        }

        PushButton {
            objectName: picker.entryName + ".cancel"
            anchors.right: parent.right
            anchors.rightMargin: 8
            y: picker.buttonPlace
            text: qsTr("Cancel")
            plain: true
            onClicked: picker.close()
        }
    }
}
