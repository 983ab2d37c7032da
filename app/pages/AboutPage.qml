// What the device is and holds: its numbers and addresses, its storage, and the printer's own values, of which
// the supply calibration can be reset.
import QtQuick 2.15
import Corvanta.Settings 1.0
import Corvanta.SettingsApplication 1.0
import "../controls"

SettingsPage {
    id: page

    enum Reset { Idle, Looking, Done, Failed }

    readonly property string absent: qsTr("Not available")
    readonly property string reading: qsTr("Reading…")

    /// What was read, by field number; undefined until then. The offsets are their two lines.
    property var texts: ({})
    /// Fields that are still to be read.
    property var waiting: []

    readonly property var offsetNames: [qsTr("Back stop"), qsTr("Horizontal"), qsTr("Black mark"), qsTr("Gap"),
                                        qsTr("Head heat")]
    readonly property var calibrationNames: [qsTr("Tach low"), qsTr("Tach high"), qsTr("Cutter trans."),
                                             qsTr("Supply trans."), qsTr("Supply refl.")]
    /// Positions of the values that the reset deletes.
    readonly property var resettable: [2, 3, 4]
    /// What became of the last reset, as far as the values that were read since then tell.
    property int resetState: AboutPage.Idle
    property int looksAfterReset
    /// How long after the reset the first look is, in milliseconds.
    property int firstLook: 300
    readonly property var calibration: ToolOutput.valueLines(
        texts[ZBSettingsAboutInfoFields.CALIBRATION_VALUES] || "", calibrationNames.length)

    function shown(field) {
        var text = texts[field];
        if (text === undefined)
            return reading;
        return Preferences.asText(text.trim()) || absent;
    }

    function cellTexts(values, whenEmpty) {
        return values.map(function (value, position) {
            return Preferences.asText(value) || whenEmpty(position);
        });
    }

    function offsetLine(head) {
        var lines = texts[ZBSettingsAboutInfoFields.OFFSET_VALUES];
        return lines === undefined ? "" : lines[head];
    }

    function offsetCells(head) {
        var values = Array.from(ToolOutput.offsetValues(offsetLine(head), offsetNames.length));
        return cellTexts(values, function () { return page.absent; });
    }

    /// For values that cannot be told apart: the text as it came.
    function replacement(field, text) {
        return texts[field] === undefined ? reading
               : Preferences.asText(text.replace(/^[,\s]+|[,\s]+$/g, "")) || absent;
    }

    function readAll() {
        texts = {};
        waiting = [ZBSettingsAboutInfoFields.VERSION_NUMBERS, ZBSettingsAboutInfoFields.SERIAL_NUMBER,
                   ZBSettingsAboutInfoFields.ETHERNET_ADDRESS, ZBSettingsAboutInfoFields.WIRELESS_ADDRESS,
                   ZBSettingsAboutInfoFields.STORAGE_VALUE, ZBSettingsAboutInfoFields.OFFSET_VALUES,
                   ZBSettingsAboutInfoFields.CALIBRATION_VALUES];
    }

    function readNext() {
        var field = waiting[0];
        waiting = waiting.slice(1);
        var next = Object.assign({}, texts);
        next[field] = field === ZBSettingsAboutInfoFields.OFFSET_VALUES
            ? Array.from(ZBSettingsMain.formatOffsets()) : ZBSettingsMain.getAboutInfo(field);
        texts = next;
        if (field === ZBSettingsAboutInfoFields.CALIBRATION_VALUES)
            judgeReset();
    }

    function resetCalibration() {
        ZBSettingsMain.resetSupplyCalibration();
        resetState = AboutPage.Looking;
        looksAfterReset = 0;
        afterReset.interval = firstLook;
        afterReset.restart();
    }

    function areDeleted() {
        return calibration.length > 0
               && resettable.every(function (position) { return page.calibration[position] === ""; });
    }

    /// After every reading of the calibration values, for whatever reason they were read.
    function judgeReset() {
        if (resetState === AboutPage.Idle)
            return;
        if (areDeleted()) {
            afterReset.stop();
            resetState = AboutPage.Done;
        } else if (resetState !== AboutPage.Looking) {
            // What could not be read says nothing new.
            if (calibration.length > 0)
                resetState = AboutPage.Idle;
        } else if (!afterReset.running) {
            lookAgain();
        }
    }

    function lookAgain() {
        ++looksAfterReset;
        if (looksAfterReset >= 3) {
            resetState = AboutPage.Failed;
            return;
        }
        afterReset.interval *= 3;
        afterReset.start();
    }

    title: qsTr("About")
    Component.onCompleted: readAll()

    action: PushButton {
        objectName: "about.refresh"
        text: qsTr("Refresh")
        plain: true
        enabled: page.waiting.length === 0
        onClicked: page.readAll()
    }

    // Each reading can take half a second. The pause lets the page be drawn in between.
    Timer {
        interval: 20
        repeat: true
        running: page.visible && page.waiting.length > 0
        onTriggered: page.readNext()
    }

    // Nobody says when the values are gone, so it is looked again, later each time, and not for ever: every
    // reading leaves something behind in the back end.
    Timer {
        id: afterReset

        onTriggered: {
            if (page.waiting.indexOf(ZBSettingsAboutInfoFields.CALIBRATION_VALUES) < 0)
                page.waiting = page.waiting.concat(ZBSettingsAboutInfoFields.CALIBRATION_VALUES);
        }
    }

    SettingsSection {
        heading: qsTr("Device")

        CompactRow {
            title: qsTr("Serial number")
            valueName: "about.serialNumber"
            value: page.shown(ZBSettingsAboutInfoFields.SERIAL_NUMBER)
        }

        CompactRow {
            title: qsTr("Version")
            valueName: "about.version"
            value: page.shown(ZBSettingsAboutInfoFields.VERSION_NUMBERS)
        }

        CompactRow {
            title: qsTr("Ethernet address")
            valueName: "about.ethernetAddress"
            value: page.shown(ZBSettingsAboutInfoFields.ETHERNET_ADDRESS)
        }

        CompactRow {
            title: qsTr("Wireless address")
            valueName: "about.wirelessAddress"
            value: page.shown(ZBSettingsAboutInfoFields.WIRELESS_ADDRESS)
        }

        // Said, and nothing hidden: what such a device must not show is for its maker to decide.
        CompactRow {
            visible: ZBSettingsMain.isMilitaryShipped
            title: qsTr("Ship mode")
            valueName: "about.shipMode"
            value: qsTr("Military")
        }
    }

    SettingsSection {
        id: storage

        readonly property string table: page.texts[ZBSettingsAboutInfoFields.STORAGE_VALUE] || ""
        readonly property var fileSystems: ToolOutput.storageRows(table)

        heading: qsTr("Storage")

        Repeater {
            model: storage.fileSystems

            StorageRow {
                storage: modelData
                valueName: "about.storage." + index
            }
        }

        // A table of another form is shown as it is.
        Item {
            width: parent.width
            height: rawTable.implicitHeight + 28
            visible: storage.fileSystems.length === 0

            PlainText {
                id: rawTable

                objectName: "about.storage"
                x: Theme.margin
                y: 14
                width: parent.width - 2 * x
                text: page.texts[ZBSettingsAboutInfoFields.STORAGE_VALUE] === undefined
                      ? page.reading : storage.table.slice(0, 2000).trim() || page.absent
                color: Theme.secondaryText
                font.family: storage.table.trim() !== "" ? "monospace" : Qt.application.font.family
                font.pixelSize: storage.table.trim() !== "" ? Theme.smallSize - 1 : Theme.bodySize - 1
                wrapMode: Text.Wrap
            }
        }
    }

    SettingsSection {
        heading: qsTr("Offsets")

        Repeater {
            model: [qsTr("Print head 1"), qsTr("Print head 2")]

            ValueCells {
                title: modelData
                names: page.offsetNames
                valueName: "about.offsets" + (index + 1)
                values: page.offsetCells(index)
                replacement: page.replacement(ZBSettingsAboutInfoFields.OFFSET_VALUES, page.offsetLine(index))
            }
        }
    }

    SettingsSection {
        heading: qsTr("Calibration")

        ValueCells {
            names: page.calibrationNames
            valueName: "about.calibration"
            values: page.cellTexts(Array.from(page.calibration), function (position) {
                return page.resetState !== AboutPage.Idle && page.resettable.indexOf(position) >= 0
                       ? qsTr("Deleted") : page.absent;
            })
            marked: page.resetState === AboutPage.Done ? page.resettable : []
            replacement: page.replacement(ZBSettingsAboutInfoFields.CALIBRATION_VALUES,
                                          page.texts[ZBSettingsAboutInfoFields.CALIBRATION_VALUES] || "")
        }

        SettingRow {
            title: qsTr("Supply calibration")
            descriptionName: "about.resetReport"
            description: page.resetState === AboutPage.Done
                         ? qsTr("Reset. Calibrate the supply before the next print.")
                         : page.resetState === AboutPage.Looking ? qsTr("Resetting…")
                         : qsTr("Deletes the values for supply and cutter")
            warning: page.resetState === AboutPage.Failed
                     ? qsTr("The values are still there, or cannot be read.") : ""

            PushButton {
                objectName: "about.resetCalibration"
                text: qsTr("Reset…")
                quiet: true
                destructive: true
                onClicked: confirmation.open()
            }
        }
    }

    ConfirmationDialog {
        id: confirmation

        title: qsTr("Reset the supply calibration?")
        text: qsTr("This deletes the three values cutter transmission, supply transmission and supply reflection. "
                   + "They cannot be brought back: the printer has to be calibrated again.")
        confirmText: qsTr("Reset")
        onConfirmed: page.resetCalibration()
    }

    onVisibleChanged: if (!visible) confirmation.close()
}
