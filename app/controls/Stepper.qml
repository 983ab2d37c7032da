// A whole number between two ends: the slider for the long way, the buttons for the exact one.
import QtQuick 2.15
import QtQuick.Templates 2.15 as T

Item {
    id: stepper

    /// Object name of the slider; the other parts are named after it.
    property string name
    property alias title: texts.title
    property alias description: texts.description
    property alias warning: texts.warning
    property int value
    property int from
    property int to
    /// The value as a person reads it.
    property string shown: value
    /// Whether 0 is where the value belongs when nothing is to be corrected.
    property bool returnsToZero: true

    readonly property int bigStep: to - from > 1000 ? 100 : 10

    /// For each value on the way.
    signal moved(int number)
    /// The finger is away: the value is final.
    signal settled()

    function moveTo(number) {
        var next = Math.max(from, Math.min(to, number));
        if (next !== value)
            moved(next);
    }

    /// The longer a button is held, the wider it steps, as far as the range is wide.
    function stepWidth(steps) {
        var wished = steps < 20 ? 1 : steps < 40 ? 10 : 50;
        return Math.min(wished, Math.max(1, Math.floor((to - from) / 80)));
    }

    width: parent ? parent.width : 0
    implicitHeight: head.height + slider.height + 34

    RowLine { row: stepper }

    Item {
        id: head

        x: Theme.margin
        y: 14
        width: parent.width - 2 * x
        height: Math.max(Theme.touchSize, texts.implicitHeight)

        RowTexts {
            id: texts

            anchors.left: parent.left
            anchors.right: valueText.left
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
        }

        PlainText {
            id: valueText

            objectName: stepper.name + ".value"
            anchors.right: zero.visible ? zero.left : parent.right
            anchors.rightMargin: zero.visible ? 12 : 0
            height: parent.height
            text: stepper.shown
            font.pixelSize: 22
            font.weight: Font.DemiBold
            color: Theme.accent
        }

        PushButton {
            id: zero

            objectName: stepper.name + ".zero"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: stepper.returnsToZero
            enabled: stepper.value !== 0
            text: qsTr("Set to 0")
            quiet: true
            onClicked: {
                // At 0 the button cannot keep the focus.
                var byKey = visualFocus;
                stepper.moveTo(0);
                stepper.settled();
                if (byKey)
                    slider.forceActiveFocus(Qt.TabFocusReason);
            }

            Accessible.description: stepper.title
        }
    }

    StepButton {
        id: minus

        objectName: stepper.name + ".minus"
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.verticalCenter: slider.verticalCenter
        enabled: stepper.value > stepper.from
        text: qsTr("Less")
        iconName: "minus"
        onStep: stepper.moveTo(stepper.value - stepper.stepWidth(steps))
        onEnded: stepper.settled()

        Accessible.description: stepper.title
    }

    StepButton {
        id: plus

        objectName: stepper.name + ".plus"
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: slider.verticalCenter
        enabled: stepper.value < stepper.to
        text: qsTr("More")
        iconName: "plus"
        onStep: stepper.moveTo(stepper.value + stepper.stepWidth(steps))
        onEnded: stepper.settled()

        Accessible.description: stepper.title
    }

    SliderBar {
        id: slider

        objectName: stepper.name
        anchors.left: minus.right
        anchors.right: plus.left
        anchors.leftMargin: 6
        anchors.rightMargin: 6
        y: head.y + head.height + 4
        from: stepper.from
        to: stepper.to
        value: stepper.value

        onMoved: stepper.moveTo(Math.round(value))
        onPressedChanged: if (!pressed) stepper.settled()

        Keys.onPressed: {
            var direction = event.key === Qt.Key_Left ? -1 : event.key === Qt.Key_Right ? 1 : 0;
            if (direction !== 0 && (event.modifiers & Qt.ShiftModifier)) {
                stepper.moveTo(stepper.value + direction * stepper.bigStep);
                event.accepted = true;
            }
        }
        Keys.onReleased: if (!event.isAutoRepeat) stepper.settled()

        Accessible.name: stepper.title
    }
}
