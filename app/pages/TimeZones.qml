// The time zones that the system knows, taken apart into regions and cities.
pragma Singleton

import QtQuick 2.15

QtObject {
    /// Names of the form "Region/City", as the time zone database has them; set by the application.
    property var names: []

    readonly property var regions: {
        var found = {};
        names.forEach(function (name) { found[regionOf(name)] = true; });
        return Object.keys(found).sort();
    }

    function regionOf(name) {
        return name.split("/")[0];
    }

    function namesIn(region) {
        return names.filter(function (name) { return regionOf(name) === region; });
    }

    /// What a person reads: "Argentina – Buenos Aires" for "America/Argentina/Buenos_Aires".
    function cityOf(name) {
        var parts = name.split("/");
        return (parts.length > 1 ? parts.slice(1) : parts).join(" – ").replace(/_/g, " ");
    }
}
