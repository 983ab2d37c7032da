// The schema table and the lookups in it.
#include "settingsschema.h"

namespace {

struct SchemaRow
{
    const char *key;
    const char *group;
    const char *description;
};

// Keys, groups and descriptions are shared with the device's other applications, which read the same file:
// the spelling of the descriptions and the empty group of the two privacy keys stay as they are.
constexpr SchemaRow schema[] = {
    {"language", "locale", "The language code combined with region (EX: en_us)."},
    {"units", "locale", "0 for Imperial, 1 for metric."},
    {"keyboardLayout", "locale", "The language code (EX: en)."},
    {"brightnessLevel", "display", "The brightness level of the display (1 to 9)."},
    {"dimmingInactive", "display",
     "When to dim the display after a period of inactivity (ENUM of ComboBox index)."},
    {"powerInactive", "display",
     "When to turn the display backlight off after inactivity (ENUM of ComboBox index)."},
    {"sendAnalytics", "", "Whether or not to enable analytics (true or false)."},
    {"mountSharedFolder", "", "Option to enable shared folder via USB."},
    {"24Hour", "dateTime", "True to enable 24hour clock, false to leave as AM/PM"},
    {"timezone", "dateTime", "The timezone selection string"},
    {"automaticDateTime", "dateTime",
     "True to always sync date and time via internet, false to manually set."},
    {"dateFormat", "dateTime", "The string the represents what format the date will be in"},
    {"automaticUpdateCheck", "updates", "True to always check for updates, false to never check."},
    {"lastUpdateCheck", "updates", "Timestamp of last successful check for updates"},
    {"firstBootApplication", "initialization",
     "Whether or not to display the first boot application after restart."},
    {"firstBootDefaultPage", "initialization",
     "The page/step we want our first boot application to start in."},
    {"lockscreenAuto", "lockscreen", "Option for auto showing the lockscreen after a restart."},
    {"zoomLevel", "home",
     "Option for determining how big file previews and icons are on ZBHome's file browser."},
    {"appListCollapsed", "home", "Option collapsing the application list view on ZBHome."},
    {"doubleClickOpen", "home", "Option to re-enable double click to open on ZBHome."},
    {"appFirstLaunchList", "home",
     "Option to get a list of applications that have been launched by the user."},
};

std::map<std::string, std::string> column(const char *SchemaRow::*value)
{
    std::map<std::string, std::string> result;
    for (const SchemaRow &row : schema)
        result.emplace(row.key, row.*value);
    return result;
}

const std::map<std::string, std::string> descriptionOfKey = column(&SchemaRow::description);
const std::map<std::string, std::string> groupOfKey = column(&SchemaRow::group);

QString groupOf(const QString &key)
{
    return QString::fromStdString(groupOfKey.at(key.toStdString()));
}

} // namespace

const std::map<std::string, std::string> &SettingsSchema::descriptions()
{
    return descriptionOfKey;
}

const std::map<std::string, std::string> &SettingsSchema::groups()
{
    return groupOfKey;
}

QString SettingsSchema::readPath(const QString &key)
{
    const QString group = groupOf(key);
    return group.isEmpty() ? key : group + QLatin1Char('/') + key;
}

QString SettingsSchema::writePath(const QString &key)
{
    return groupOf(key) + QLatin1Char('/') + key;
}
