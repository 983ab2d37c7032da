// Prints the test page that suits the width of the supply.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsSection {
    id: section

    property bool isMetric
    /// In millimetres, or in tenths of an inch.
    property int amount: 40
    readonly property double inches: isMetric ? amount / 25.4 : amount / 10

    /// How long the button rests after a print, so that a double touch prints once, in milliseconds.
    property alias rest: rest.interval
    property bool isHandedOver

    /// Each page is for supplies that are wider than the next smaller one.
    readonly property int pageSize: inches > 6 ? 9 : inches > 4 ? 6 : 4

    function refresh() {
        var metric = Preferences.asWholeNumber(
            Preferences.read(ZBSettingsMain.KEY_UNITS, ZBSettingsMain.settingUnits)) === 1;
        if (metric === isMetric)
            return;
        var width = inches;
        isMetric = metric;
        amount = Math.round(metric ? width * 25.4 : width * 10);
    }

    /// 101 mm is within 4 inches, 102 mm is not.
    function limit(inches) {
        return inUnits(isMetric ? Math.floor(inches * 25.4) : inches * 10);
    }

    function inUnits(number) {
        return isMetric ? qsTr("%1 mm").arg(number)
               : qsTr("%1 in").arg((number / 10).toLocaleString(Qt.locale(), "f", 1));
    }

    heading: qsTr("Test page")
    onVisibleChanged: if (visible) refresh()
    Component.onCompleted: refresh()

    Timer {
        id: rest

        interval: 2000
    }

    Stepper {
        name: "supplyWidth"
        title: qsTr("Width of the supply")
        description: qsTr("%1 to %2").arg(section.inUnits(from)).arg(section.inUnits(to))
        from: section.isMetric ? 25 : 10
        to: section.isMetric ? 305 : 120
        value: section.amount
        shown: section.inUnits(value)
        returnsToZero: false
        onMoved: {
            section.amount = number;
            section.isHandedOver = false;
        }
    }

    SettingRow {
        title: qsTr("Test page of %1 × %1 inches").arg(section.pageSize)
        descriptionName: "testPage.report"
        description: section.isHandedOver ? qsTr("Handed to the print system")
                     : section.pageSize === 4 ? qsTr("For supplies up to %1").arg(section.limit(4))
                     : section.pageSize === 6 ? qsTr("For supplies up to %1").arg(section.limit(6))
                     : qsTr("For supplies above %1").arg(section.limit(6))

        PushButton {
            objectName: "testPage.print"
            text: qsTr("Print test page")
            enabled: !rest.running
            onClicked: {
                rest.start();
                PrintOptions.printTestPage(section.inches);
                section.isHandedOver = true;
            }
        }
    }
}
