// Picks a date and a time of day on wheels. Only days that the month has can be picked.
import QtQuick 2.15
import "../controls"

PickerPopup {
    id: picker

    property bool twentyFourHours
    /// The parts of the date stand in the order of this format.
    property string dateFormat: "MM/dd/yy"

    readonly property int firstYear: 2020
    readonly property int lastYear: 2099
    readonly property int year: firstYear + yearWheel.position
    readonly property int month: 1 + monthWheel.position
    readonly property int day: 1 + dayWheel.position
    readonly property int hour: twentyFourHours ? hourWheel.position
                                : hourWheel.position + 12 * halfWheel.position
    readonly property int minute: minuteWheel.position
    readonly property date pickedDate: new Date(year, month - 1, day, hour, minute)

    /// Month counts from 1.
    signal picked(int year, int month, int day, int hour, int minute)

    function numbers(first, last, width) {
        var texts = [];
        for (var number = first; number <= last; ++number)
            texts.push(("0000" + number).slice(-Math.max(width, String(number).length)));
        return texts;
    }

    function daysInMonth() {
        // Of the wheels themselves: what is bound to them may not have followed yet.
        return new Date(firstYear + yearWheel.position, 1 + monthWheel.position, 0).getDate();
    }

    /// After a turn of the year or the month.
    function fitDays() {
        var days = daysInMonth();
        if (dayWheel.count !== days)
            dayWheel.show(numbers(1, days, 1), Math.min(dayWheel.position, days - 1));
    }

    /// Where a part of the date stands, counted from the left.
    function placeOf(letter) {
        var order = ["y", "M", "d"].sort(function (one, other) {
            return dateFormat.indexOf(one) - dateFormat.indexOf(other);
        });
        return order.indexOf(letter);
    }

    function showTime(now) {
        var shownYear = Math.max(firstYear, Math.min(lastYear, now.getFullYear()));
        yearWheel.show(numbers(firstYear, lastYear, 4), shownYear - firstYear);
        monthWheel.show(numbers(0, 11, 1).map(function (month) {
            return Qt.locale().standaloneMonthName(Number(month), Locale.ShortFormat);
        }), now.getMonth());
        var days = daysInMonth();
        dayWheel.show(numbers(1, days, 1), Math.min(now.getDate(), days) - 1);
        hourWheel.show(twentyFourHours ? numbers(0, 23, 2) : ["12"].concat(numbers(1, 11, 1)),
                       twentyFourHours ? now.getHours() : now.getHours() % 12);
        minuteWheel.show(numbers(0, 59, 2), now.getMinutes());
        halfWheel.show([Qt.locale().amText, Qt.locale().pmText], now.getHours() < 12 ? 0 : 1);
    }

    title: qsTr("Date and time")
    height: parent ? Math.min(parent.height - 32, 448) : 0
    padding: 16

    onAboutToShow: showTime(new Date())
    // Only now the wheels have their heights.
    onOpened: {
        showTime(new Date());
        cancel.forceActiveFocus(Qt.TabFocusReason);
    }

    contentItem: FocusScope {
        id: content

        readonly property real unit: (width - 5 * 8 - 16) / (picker.twentyFourHours ? 11 : 13)

        Row {
            id: wheels

            width: parent.width
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 40
            spacing: 8

            // The order of the three differs, that of the focus with it.
            Repeater {
                id: places

                model: 3

                Item {
                    width: content.unit * (index === picker.placeOf("y") || index === picker.placeOf("M") ? 2.5 : 2)
                    height: wheels.height
                }
            }

            Item {
                width: 8
                height: 1
            }

            PickerWheel {
                id: hourWheel

                objectName: "clock.hour"
                label: qsTr("Hour")
                width: content.unit * 2
                height: parent.height
            }

            PickerWheel {
                id: minuteWheel

                objectName: "clock.minute"
                label: qsTr("Minute")
                width: content.unit * 2
                height: parent.height
            }

            PickerWheel {
                id: halfWheel

                objectName: "clock.half"
                label: qsTr("Morning or afternoon")
                visible: !picker.twentyFourHours
                width: content.unit * 2
                height: parent.height
            }
        }

        PickerWheel {
            id: yearWheel

            objectName: "clock.year"
            label: qsTr("Year")
            parent: places.count === 3 ? places.itemAt(picker.placeOf("y")) : null
            anchors.fill: parent ? parent : undefined
            onPositionChanged: picker.fitDays()
        }

        PickerWheel {
            id: monthWheel

            objectName: "clock.month"
            label: qsTr("Month")
            parent: places.count === 3 ? places.itemAt(picker.placeOf("M")) : null
            anchors.fill: parent ? parent : undefined
            onPositionChanged: picker.fitDays()
        }

        PickerWheel {
            id: dayWheel

            objectName: "clock.day"
            label: qsTr("Day")
            parent: places.count === 3 ? places.itemAt(picker.placeOf("d")) : null
            anchors.fill: parent ? parent : undefined
        }

        PlainText {
            objectName: "clock.picked"
            anchors.bottom: parent.bottom
            width: parent.width
            height: 32
            text: picker.pickedDate.toLocaleDateString(Qt.locale(), "dddd, d MMMM yyyy") + ", "
                  + Qt.formatTime(picker.pickedDate, picker.twentyFourHours ? "HH:mm" : "h:mm AP")
            color: Theme.secondaryText
            horizontalAlignment: Text.AlignHCenter
        }

        PushButton {
            id: cancel

            objectName: "clock.cancel"
            anchors.right: accept.left
            anchors.rightMargin: 8
            y: picker.buttonPlace
            text: qsTr("Cancel")
            plain: true
            onClicked: picker.close()
        }

        PushButton {
            id: accept

            objectName: "clock.set"
            anchors.right: parent.right
            y: picker.buttonPlace
            text: qsTr("Set")
            onClicked: {
                picker.close();
                picker.picked(picker.year, picker.month, picker.day, picker.hour, picker.minute);
            }
        }
    }
}
