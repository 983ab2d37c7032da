// The table of notifications to the utility daemon.
#include "settingnotification.h"

#include <algorithm>
#include <iterator>

namespace {

QVariant asInt(const QVariant &value)
{
    return value.toInt();
}

QVariant asUInt(const QVariant &value)
{
    return value.toUInt();
}

QVariant asBool(const QVariant &value)
{
    return value.toBool();
}

QVariant asGiven(const QVariant &value)
{
    return value;
}

// "Dbus" in the last row is what log readers of the device look for, like "DBus" in the others.
constexpr SettingNotification notifications[] = {
    {"dimmingInactive", "setDisplayDimTime", asInt, "DBus Reply(setDisplayDimTime) is inValid "},
    {"powerInactive", "setDisplayPowerOffTime", asInt, "DBus Reply(setDisplayPowerOffTime) is inValid "},
    {"brightnessLevel", "setDisplayBrightness", asUInt, "DBus Reply(setDisplayBrightness) is inValid "},
    {"automaticUpdateCheck", "setAutomaticUpdateCheck", asBool,
     "DBus Reply(setAutomaticUpdateCheck) is inValid "},
    {"24Hour", "setTwentyFourHourMode", asGiven, "DBus Reply(setTwentyFourHourMode) is inValid "},
    {"dateFormat", "setDateFormat", asGiven, "Dbus Reply(setDateFormat) is inValid "},
};

} // namespace

const SettingNotification *notificationFor(const QString &key)
{
    const auto found =
        std::find_if(std::begin(notifications), std::end(notifications),
                     [&key](const SettingNotification &row) { return key == QLatin1String(row.key); });
    return found == std::end(notifications) ? nullptr : found;
}
