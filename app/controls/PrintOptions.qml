// The print options as the pages show them: the back end's properties are what the options were when the first
// of these pages was shown or a preset was loaded, and do not follow what is set.
pragma Singleton

import QtQuick 2.15
import Corvanta.Settings 1.0
import Corvanta.SettingsApplication 1.0

QtObject {
    id: options

    /// The values by the names of the back end's properties.
    property var values: ({})
    /// The user's presets, in the back end's order.
    property var presetNames: []
    /// Names of which one could not be deleted. The back end does it with the next change that it can write.
    property var undeleted: []
    /// The preset that was loaded or saved last, by this program; empty for none.
    property string preset
    /// What the options were then.
    property var valuesOfPreset: ({})
    /// Whether they are others now. A preset leaves the ribbon saver alone.
    readonly property bool presetIsChanged: preset !== "" && Object.keys(setters).some(function (option) {
        return option !== "ribbonSaver" && values[option] !== valuesOfPreset[option];
    })

    /// What can come of loading a preset.
    readonly property int loaded: 0
    readonly property int withoutOptions: 1
    readonly property int notWritten: 2

    /// A predefined preset without options: there is nothing to load in it, and it cannot be deleted.
    readonly property string currentSettings: "<Current Settings>"
    readonly property string systemSettings: "<System Settings>"
    readonly property string defaultSettings: "<Default Settings>"
    /// Names that the back end has uses of its own for; it does not list the last one.
    readonly property var reservedNames: [currentSettings, systemSettings, defaultSettings, "Sample Preset"]

    readonly property string positionUnit: qsTr("position steps")
    readonly property string heatUnit: qsTr("heat steps")
    readonly property string tensionUnit: qsTr("tension steps")

    /// What the printer-option library takes; it clamps what lies outside.
    readonly property var ranges: ({
        horizontal1Offset: { from: -2000, to: 2000, unit: positionUnit },
        horizontal2Offset: { from: -2000, to: 2000, unit: positionUnit },
        vertical1Offset: { from: -2000, to: 2000, unit: positionUnit },
        vertical2Offset: { from: -2000, to: 2000, unit: positionUnit },
        feedOffset: { from: -2000, to: 2000, unit: positionUnit },
        backfeedOffset: { from: -2000, to: 2000, unit: positionUnit },
        head1HeatOffset: { from: -50, to: 50, unit: heatUnit },
        head2HeatOffset: { from: -50, to: 50, unit: heatUnit },
        r1Tension: { from: -10, to: 10, unit: tensionUnit },
        r2Tension: { from: -10, to: 10, unit: tensionUnit }
    })

    readonly property var setters: ({
        orientationOption: "setPrintOrientation",
        mirror: "setMirror",
        negative: "setNegative",
        overprint: "setOverprint",
        whitebase: "setWhitebase",
        cutOption: "setCutOption",
        ribbonSaver: "setRibbonSaver",
        ditheringMethod: "setDitheringMethod",
        horizontal1Offset: "setHorizontal1Offset",
        horizontal2Offset: "setHorizontal2Offset",
        vertical1Offset: "setVertical1Offset",
        vertical2Offset: "setVertical2Offset",
        feedOffset: "setFeedOffset",
        backfeedOffset: "setBackfeedOffset",
        head1HeatOffset: "setHead1HeatOffset",
        head2HeatOffset: "setHead2HeatOffset",
        r1Tension: "setR1Tension",
        r2Tension: "setR2Tension"
    })

    /// What was changed and not yet handed to the back end, by name.
    property var waiting: ({})

    /// Shows the value and hands it to the back end, which writes a file.
    function change(option, value) {
        show(option, value);
        handOver(option, value);
    }

    /// The same for values that follow each other quickly, while a finger moves: some of them are left out.
    /// The last one never is.
    function changeSoon(option, value) {
        show(option, value);
        waiting[option] = value;
        if (!pause.running)
            settle();
    }

    /// Hands over what still waits. Called when a finger leaves, and before the options are used.
    function settle() {
        var isAnythingWaiting = false;
        for (var option in waiting) {
            isAnythingWaiting = true;
            handOver(option, waiting[option]);
        }
        if (isAnythingWaiting)
            pause.restart();
    }

    function show(option, value) {
        var next = Object.assign({}, values);
        next[option] = value;
        values = next;
    }

    function handOver(option, value) {
        delete waiting[option];
        ZBSettingsPrinter[setters[option]](value);
    }

    function readValues() {
        var next = {};
        for (var option in setters)
            next[option] = ZBSettingsPrinter[option];
        // A preset leaves the ribbon saver as it is, and so its property as it was at the start.
        if (values.ribbonSaver !== undefined)
            next.ribbonSaver = values.ribbonSaver;
        next.ditheringMethod = knownDithering(next.ditheringMethod);
        values = next;
    }

    /// A preset can bring a method that the model does not have. The back end then sets the threshold.
    function knownDithering(name) {
        var names = Array.from(ZBSettingsPrinter.ditheringComboBoxModel);
        if (name === "" || names.indexOf(name) >= 0)
            return name;
        return names.find(function (known) { return known.indexOf("Threshold") === 0; }) || "";
    }

    function userPresets() {
        var names = Array.from(ZBSettingsPrinter.populatePresetList());
        if (names[0] === currentSettings)
            names.shift();
        return names;
    }

    function readPresetNames() {
        presetNames = userPresets();
    }

    /// How many presets of this name the back end has, also of those that it could not write.
    function listed(name) {
        return userPresets().filter(function (known) { return known === name; }).length;
    }

    /// The library takes the nearest number in the range for what a preset holds.
    function keepToRanges() {
        var next = Object.assign({}, values);
        for (var option in ranges)
            next[option] = Math.max(ranges[option].from, Math.min(ranges[option].to, next[option]));
        values = next;
    }

    /// Whether other programs find what was loaded. The back end does not say which number stands for the
    /// dithering method, so that one is not asked for.
    function areWritten() {
        var stored = PrinterFiles.options();
        return Object.keys(stored).every(function (option) {
            var shown = option in ranges ? values[option] : ZBSettingsPrinter[option];
            return stored[option] === shown;
        });
    }

    function usePreset(name) {
        preset = name;
        valuesOfPreset = values;
    }

    /// What came of it.
    function load(name) {
        settle();
        if (ZBSettingsPrinter.loadPreset(name).length === 0)
            return withoutOptions;
        readValues();
        keepToRanges();
        var written = areWritten();
        usePreset(written ? name : "");
        return written ? loaded : notWritten;
    }

    /// In place of the one that has this name, if there is one. Whether it is on the disk.
    function save(name) {
        settle();
        var isInTheWay = presetNames.indexOf(name) >= 0 || undeleted.indexOf(name) >= 0;
        // One that is still there would be taken for the new one. A look can take half a second, so there is
        // no second one after it.
        var isRoom = !isInTheWay || deleteNewest(name);
        ZBSettingsPrinter.addPreset(name);
        usePreset(name);
        readPresetNames();
        return isRoom && PrinterFiles.presetsNamed(name) >= listed(name);
    }

    /// Also what could not be deleted before, then with nothing of the name in the list. Whether it is gone
    /// from the disk.
    function deleteNewest(name) {
        ZBSettingsPrinter.deletePreset(name);
        var left = PrinterFiles.presetsNamed(name);
        var isGone = left >= 0 && left <= listed(name);
        var others = undeleted.filter(function (known) { return known !== name; });
        undeleted = isGone ? others : others.concat([name]);
        return isGone;
    }

    /// What a preset that is saved now does not bring back when it is loaded, as the back end has it.
    function lostInPreset() {
        settle();
        var lost = [];
        if (values.orientationOption === "")
            lost.push(qsTr("orientation “Not chosen”"));
        if (values.ditheringMethod.indexOf("Bayer") === 0)
            lost.push(qsTr("dithering “%1”").arg(values.ditheringMethod));
        // Of 2.5 the preset makes 0, and not 2 as these pages do.
        if (PrinterFiles.options().backfeedOffset % 1 !== 0)
            lost.push(qsTr("backfeed offset"));
        return lost;
    }

    /// Whether it is gone from the disk.
    function remove(name) {
        var isGone = deleteNewest(name);
        if (preset === name)
            preset = "";
        readPresetNames();
        return isGone;
    }

    function printTestPage(inches) {
        settle();
        ZBSettingsPrinter.printTestPage(inches);
    }

    readonly property Timer pause: Timer {
        interval: 300
        onTriggered: options.settle()
    }

    readonly property Connections atTheEnd: Connections {
        target: Qt.application

        function onAboutToQuit() {
            options.settle();
        }
    }

    Component.onCompleted: {
        readValues();
        readPresetNames();
    }
}
