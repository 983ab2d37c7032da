// What a person reads of a print job, and the picture's address.
pragma Singleton

import QtQuick 2.15
import Corvanta.SettingsApplication 1.0
import "../controls"

QtObject {
    /// The words of the print queue, each with an icon and whether it is good, bad or neither.
    readonly property var states: ({
        Waiting: { text: qsTr("Waiting"), icon: "clock", color: Theme.secondaryText },
        Held: { text: qsTr("Held"), icon: "pause", color: Theme.secondaryText },
        Printing: { text: qsTr("Printing"), icon: "printer", color: Theme.accent },
        Stopped: { text: qsTr("Stopped"), icon: "pause", color: Theme.warning },
        Printed: { text: qsTr("Printed"), icon: "check", color: Theme.accent },
        Cancelled: { text: qsTr("Cancelled"), icon: "cross", color: Theme.secondaryText },
        Failed: { text: qsTr("Failed"), icon: "warning", color: Theme.warning }
    })
    readonly property var errors: [qsTr("None"), qsTr("Failed"), qsTr("Cancelled"), qsTr("Lost by the print system")]

    /// A word that is not known stands as it is.
    function stateOf(job) {
        var word = String(job.jobStatus);
        return states.hasOwnProperty(word) ? states[word]
               : { text: line(word), icon: "information", color: Theme.secondaryText };
    }

    /// One line of what can be seen, whatever the text holds.
    function line(text) {
        return PresetNames.visibleName(Preferences.asText(text));
    }

    function nameOf(job) {
        return line(job.jobName) || qsTr("Unnamed document");
    }

    /// For a sentence, which shall stay short.
    function quoted(job) {
        return "“" + PresetNames.shortened(nameOf(job), 40) + "”";
    }

    function joined(texts) {
        return texts.filter(Boolean).join(" · ");
    }

    /// What follows the state. An error that the state says itself is left out.
    function timeAndError(job) {
        var error = job.errorValue === 3 ? qsTr("Lost")
                    : job.errorValue > errors.length - 1 || job.errorValue < 0 ? errorOf(job) : "";
        return joined([line(job.timeStamp), error]);
    }

    function errorOf(job) {
        var known = errors[job.errorValue];
        return known === undefined ? qsTr("Error %1").arg(number(job.errorValue)) : known;
    }

    function counts(job) {
        return joined([qsTr("Copies %1").arg(number(job.copyCount)), qsTr("Series %1").arg(number(job.seriesCount)),
                       qsTr("Heat %1").arg(pair(job.heat1, job.heat2)),
                       qsTr("Tension %1").arg(pair(job.tension1, job.tension2))]);
    }

    /// The SKU of each, and only where there is none the colour: a row has no room for more.
    function supplies(job) {
        var texts = [[qsTr("Media %1"), "supply"], [qsTr("Ribbon 1 %1"), "ribbon1"], [qsTr("Ribbon 2 %1"), "ribbon2"]]
            .map(function (entry) {
                var text = line(job[entry[1] + "SKU"]) || line(job[entry[1] + "Color"]);
                return text === "" ? "" : entry[0].arg(text);
            });
        return joined(texts) || qsTr("No supplies known");
    }

    /// SKU, colour and mileage of "supply", "ribbon1" or "ribbon2"; empty where there is none.
    function supply(job, name) {
        var texts = [line(job[name + "SKU"]), line(job[name + "Color"])].filter(Boolean);
        return texts.length > 0 ? texts.concat(qsTr("mileage %1").arg(mileage(job[name + "Mileage"]))).join(", ")
                                : "";
    }

    function pair(first, second) {
        return number(first) + " / " + number(second);
    }

    function number(value) {
        return value === undefined ? "–" : String(value);
    }

    function mileage(value) {
        if (typeof value !== "number" || !isFinite(value))
            return "–";
        return Math.abs(value) < 1e9 ? value.toLocaleString(Qt.locale(), "f", 1) : value.toExponential(1);
    }

    /// The back end puts "file:///" before a path and leaves the path as it is, which may begin with a slash of its
    /// own and hold what means something in an address. Empty where there is no picture.
    function picture(job) {
        var path = String(job.imagePath || "").replace(/^file:\/+/, "");
        return path === "" ? "" : "file:///" + path.split("/").map(encodeURIComponent).join("/");
    }
}
