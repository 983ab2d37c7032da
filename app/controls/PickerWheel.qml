// A wheel of entries of which the one in the middle is picked: by a touch on an entry, by turning, by keys.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

T.Control {
    id: control

    property string label
    property int position
    readonly property alias count: list.count
    readonly property string text: entries[position] || ""
    property var entries: []

    readonly property int entryHeight: 52

    /// Other entries, with the one at this position picked.
    function show(newEntries, newPosition) {
        list.settling = true;
        entries = newEntries;
        position = newPosition;
        pick(newPosition);
        list.settling = false;
    }

    /// At once: a touch on a wheel that still turns would stop it between two entries.
    function pick(newPosition) {
        list.cancelFlick();
        list.currentIndex = newPosition;
        list.positionViewAtIndex(newPosition, ListView.SnapPosition);
    }

    function step(by) {
        pick(Math.max(0, Math.min(list.count - 1, list.currentIndex + by)));
    }

    focusPolicy: Qt.StrongFocus
    implicitHeight: 5 * entryHeight

    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)
    Keys.onPressed: {
        var steps = {};
        steps[Qt.Key_PageUp] = -10;
        steps[Qt.Key_PageDown] = 10;
        steps[Qt.Key_Home] = -list.count;
        steps[Qt.Key_End] = list.count;
        if (event.key in steps) {
            step(steps[event.key]);
            event.accepted = true;
        }
    }

    Accessible.role: Accessible.SpinBox
    Accessible.name: label
    Accessible.description: text

    background: Rectangle {
        radius: Theme.radius
        color: Theme.background

        Rectangle {
            y: (parent.height - height) / 2
            width: parent.width
            height: control.entryHeight
            color: Theme.accentSoft
        }
    }

    contentItem: ListView {
        id: list

        property bool settling

        clip: true
        model: control.entries
        snapMode: ListView.SnapToItem
        boundsBehavior: Flickable.StopAtBounds
        highlightRangeMode: ListView.StrictlyEnforceRange
        preferredHighlightBegin: (height - control.entryHeight) / 2
        preferredHighlightEnd: (height + control.entryHeight) / 2
        highlightMoveDuration: 0
        activeFocusOnTab: false
        keyNavigationEnabled: false

        onCurrentIndexChanged: if (!settling && currentIndex >= 0) control.position = currentIndex

        delegate: PlainText {
            readonly property bool isPicked: ListView.isCurrentItem

            objectName: control.objectName + "." + modelData
            width: ListView.view ? ListView.view.width : 0
            height: control.entryHeight
            text: modelData
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: isPicked ? 22 : Theme.bodySize
            font.weight: isPicked ? Font.DemiBold : Font.Normal
            color: isPicked ? Theme.text : Theme.secondaryText

            MouseArea {
                anchors.fill: parent
                onClicked: {
                    control.pick(index);
                    control.forceActiveFocus(Qt.MouseFocusReason);
                }
            }
        }
    }

    FocusRing {
        control: control
        z: 1
    }
}
