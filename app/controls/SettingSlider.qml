// A setting that is a whole number between two ends. It is stored once a step, while the finger moves.
import QtQuick 2.15

Item {
    id: row

    property string settingKey
    property int fallback
    property alias title: texts.title
    property alias from: slider.from
    property alias to: slider.to
    property string lowIcon
    property string highIcon
    /// What is stored, as far as this page knows; NaN when that is no whole number.
    property real stored: fallback

    readonly property bool storedFits: stored >= from && stored <= to

    function refresh() {
        stored = Preferences.asWholeNumber(Preferences.read(settingKey, fallback));
        slider.value = isNaN(stored) ? from : stored;
    }

    function storeStep() {
        stored = Math.round(slider.value) | 0;
        Preferences.change(settingKey, stored);
    }

    width: parent ? parent.width : 0
    implicitHeight: texts.implicitHeight + slider.height + 30

    onVisibleChanged: if (visible) refresh()
    Component.onCompleted: refresh()

    RowLine { row: row }

    RowTexts {
        id: texts

        x: Theme.margin
        y: 16
        width: parent.width - valueText.width - 3 * Theme.margin
        warning: row.storedFits
                 ? "" : qsTr("The stored value is not between %1 and %2.").arg(row.from).arg(row.to)
    }

    PlainText {
        id: valueText

        objectName: row.settingKey + ".value"
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.top: texts.top
        text: row.storedFits ? row.stored : "–"
        font.weight: Font.DemiBold
        color: Theme.accent
    }

    Icon {
        id: low

        anchors.left: parent.left
        anchors.leftMargin: Theme.margin - 2
        anchors.verticalCenter: slider.verticalCenter
        visible: row.lowIcon !== ""
        name: row.lowIcon
        color: Theme.secondaryText
    }

    Icon {
        id: high

        anchors.right: parent.right
        anchors.rightMargin: Theme.margin - 2
        anchors.verticalCenter: slider.verticalCenter
        visible: row.highIcon !== ""
        name: row.highIcon
        color: Theme.secondaryText
    }

    SliderBar {
        id: slider

        objectName: row.settingKey
        anchors.left: low.visible ? low.right : parent.left
        anchors.leftMargin: low.visible ? 6 : Theme.margin
        anchors.right: high.visible ? high.left : parent.right
        anchors.rightMargin: high.visible ? 6 : Theme.margin
        y: texts.y + texts.height + 4

        onMoved: row.storeStep()

        Accessible.name: row.title
    }
}
