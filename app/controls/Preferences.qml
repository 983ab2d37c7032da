// The one place where controls read and write settings: how a change is stored and reported, and what a
// value is worth that any other program may have written.
pragma Singleton

import QtQuick 2.15
import Corvanta.Settings 1.0

QtObject {
    /// The setting as it is stored now; the fallback when the settings file does not hold it.
    function read(key, fallback) {
        return ZBSettingsMain.getSetting(key, fallback);
    }

    /// Stores what the user chose, and reports the change where the user allows that.
    function change(key, value) {
        ZBSettingsMain.setSetting(key, value);
        if (asBoolean(read(ZBSettingsMain.KEY_PRIVACY_ANALYTICS, true)))
            ZBSettingsMain.sendAnalyticHit(key, value);
    }

    /// Stored values are mostly texts. As for the back end, each but "", "0" and "false" counts as true.
    function asBoolean(value) {
        if (typeof value === "string")
            return ["", "0", "false"].indexOf(value.toLowerCase()) < 0;
        return value === true || (typeof value === "number" && value !== 0);
    }

    /// NaN for what is no whole number.
    function asWholeNumber(value) {
        if (typeof value === "string" && /^\s*[+-]?\d+\s*$/.test(value))
            return parseInt(value, 10);
        return typeof value === "number" && Number.isInteger(value) ? value : NaN;
    }

    /// One line of bounded length, whatever the file holds.
    function asText(value) {
        if (value === undefined || value === null)
            return "";
        var text = Array.isArray(value) ? value.join(", ") : String(value);
        return text.slice(0, 200).replace(/[\u0000-\u001f\u007f\u2028\u2029]+/g, " ");
    }
}
