// Prints the test page that suits the width of the supply.
import QtQuick 2.15
import Corvanta.Settings 1.0
import "../controls"

SettingsSection {
    id: section

    property bool isMetric
    property double inches: 4
    /// In millimetres, or in tenths of an inch. The nearest that takes the same test page: those end at whole
    /// inches, so downwards from inches and upwards from millimetres.
    readonly property int amount: isMetric ? Math.floor(inches * 25.4 + tolerance)
                                           : Math.ceil(inches * 10 - tolerance)
    readonly property double tolerance: 0.000001
    readonly property int least: isMetric ? 25 : 10
    readonly property int most: isMetric ? 305 : 120

    /// How long the button rests after a print, so that a double touch prints once, in milliseconds.
    property alias rest: rest.interval
    property bool wasAsked

    /// Each page is for supplies that are wider than the next smaller one.
    readonly property int pageSize: inches > 6 ? 9 : inches > 4 ? 6 : 4

    function refresh() {
        isMetric = Preferences.asWholeNumber(
            Preferences.read(ZBSettingsMain.KEY_UNITS, ZBSettingsMain.settingUnits)) === 1;
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
        from: section.least
        to: section.most
        value: Math.max(from, Math.min(to, section.amount))
        shown: section.inUnits(value)
        returnsToZero: false
        onMoved: {
            section.inches = section.isMetric ? number / 25.4 : number / 10;
            section.wasAsked = false;
        }
    }

    SettingRow {
        title: qsTr("Test page of %1 × %1 inches").arg(section.pageSize)
        descriptionName: "testPage.report"
        description: section.wasAsked ? qsTr("The print system was asked to print")
                     : section.pageSize === 4 ? qsTr("For supplies up to %1").arg(section.limit(4))
                     : section.pageSize === 6 ? qsTr("For supplies up to %1").arg(section.limit(6))
                     : qsTr("For supplies above %1").arg(section.limit(6))

        PushButton {
            objectName: "testPage.print"
            text: qsTr("Print test page")
            // Disabled it would lose the focus.
            resting: rest.running
            onClicked: {
                if (resting)
                    return;
                rest.start();
                PrintOptions.printTestPage(section.inches);
                section.wasAsked = true;
            }
        }
    }
}
