// The property getters of ZBSettingsMain.
#include "zbsettingsmain.h"

#include "zbsettingsmain_p.h"

QString ZBSettingsMain::GROUP_LOCALE() const
{
    return d->GROUP_LOCALE;
}

QString ZBSettingsMain::GROUP_DISPLAY() const
{
    return d->GROUP_DISPLAY;
}

QString ZBSettingsMain::GROUP_PRIVACY() const
{
    return d->GROUP_PRIVACY;
}

QString ZBSettingsMain::GROUP_DATETIME() const
{
    return d->GROUP_DATETIME;
}

QString ZBSettingsMain::GROUP_UPDATES() const
{
    return d->GROUP_UPDATES;
}

QString ZBSettingsMain::GROUP_INIT() const
{
    return d->GROUP_INIT;
}

QString ZBSettingsMain::GROUP_LOCKSCREEN() const
{
    return d->GROUP_LOCKSCREEN;
}

QString ZBSettingsMain::GROUP_HOME() const
{
    return d->GROUP_HOME;
}

QString ZBSettingsMain::KEY_LANGUAGE() const
{
    return d->KEY_LANGUAGE;
}

QString ZBSettingsMain::KEY_UNITS() const
{
    return d->KEY_UNITS;
}

QString ZBSettingsMain::KEY_KEYBOARD_LAYOUT() const
{
    return d->KEY_KEYBOARD_LAYOUT;
}

QString ZBSettingsMain::KEY_DISPLAY_BRIGHTNESS() const
{
    return d->KEY_DISPLAY_BRIGHTNESS;
}

QString ZBSettingsMain::KEY_DISPLAY_DIMMING() const
{
    return d->KEY_DISPLAY_DIMMING;
}

QString ZBSettingsMain::KEY_DISPLAY_POWER() const
{
    return d->KEY_DISPLAY_POWER;
}

QString ZBSettingsMain::KEY_PRIVACY_ANALYTICS() const
{
    return d->KEY_PRIVACY_ANALYTICS;
}

QString ZBSettingsMain::KEY_MOUNT_SHARED_FOLDER() const
{
    return d->KEY_MOUNT_SHARED_FOLDER;
}

QString ZBSettingsMain::KEY_DATETIME_24HOUR() const
{
    return d->KEY_DATETIME_24HOUR;
}

QString ZBSettingsMain::KEY_DATETIME_AUTO() const
{
    return d->KEY_DATETIME_AUTO;
}

QString ZBSettingsMain::KEY_DATETIME_FORMAT() const
{
    return d->KEY_DATETIME_FORMAT;
}

QString ZBSettingsMain::KEY_UPDATE_AUTOCHECK() const
{
    return d->KEY_UPDATE_AUTOCHECK;
}

QString ZBSettingsMain::KEY_UPDATE_LASTCHECK() const
{
    return d->KEY_UPDATE_LASTCHECK;
}

QString ZBSettingsMain::KEY_INIT_FIRSTBOOTAPP() const
{
    return d->KEY_INIT_FIRSTBOOTAPP;
}

QString ZBSettingsMain::KEY_INIT_FIRSTBOOTPAGE() const
{
    return d->KEY_INIT_FIRSTBOOTPAGE;
}

QString ZBSettingsMain::KEY_LOCK_AUTO() const
{
    return d->KEY_LOCK_AUTO;
}

QString ZBSettingsMain::KEY_ZOOMLEVEL() const
{
    return d->KEY_ZOOMLEVEL;
}

QString ZBSettingsMain::KEY_APPCOLLAPSED() const
{
    return d->KEY_APPCOLLAPSED;
}

QString ZBSettingsMain::KEY_DOUBLECLICK() const
{
    return d->KEY_DOUBLECLICK;
}

QString ZBSettingsMain::KEY_FIRSTLAUNCHLIST() const
{
    return d->KEY_FIRSTLAUNCHLIST;
}

QString ZBSettingsMain::settingLanguage() const
{
    return d->settingLanguage;
}

uint ZBSettingsMain::settingUnits() const
{
    return d->settingUnits;
}

QString ZBSettingsMain::settingKeyboardLayout() const
{
    return d->settingKeyboardLayout;
}

uint ZBSettingsMain::settingDisplayBrightness() const
{
    return d->settingDisplayBrightness;
}

int ZBSettingsMain::settingDisplayDimming() const
{
    return d->settingDisplayDimming;
}

int ZBSettingsMain::settingDisplayPower() const
{
    return d->settingDisplayPower;
}

bool ZBSettingsMain::settingPrivacyAnalytics() const
{
    return d->settingPrivacyAnalytics;
}

bool ZBSettingsMain::settingDateTime24Hour() const
{
    return d->settingDateTime24Hour;
}

bool ZBSettingsMain::settingDateTimeAuto() const
{
    return d->settingDateTimeAuto;
}

QString ZBSettingsMain::settingDateFormat() const
{
    return d->settingDateFormat;
}

bool ZBSettingsMain::settingUpdateAutoCheck() const
{
    return d->settingUpdateAutoCheck;
}

QString ZBSettingsMain::settingUpdateLastCheck() const
{
    return d->settingUpdateLastCheck;
}

bool ZBSettingsMain::settingFirstBootApplication() const
{
    return d->settingFirstBootApplication;
}

bool ZBSettingsMain::settingLockscreenAuto() const
{
    return d->settingLockscreenAuto;
}

uint ZBSettingsMain::settingZoomeLevel() const
{
    return d->settingZoomeLevel;
}

bool ZBSettingsMain::settingAppCollapsed() const
{
    return d->settingAppCollapsed;
}

bool ZBSettingsMain::settingDoubleClickOpen() const
{
    return d->settingDoubleClickOpen;
}

bool ZBSettingsMain::settingMountSharedFolder() const
{
    return d->settingMountSharedFolder;
}

QStringList ZBSettingsMain::settingFirstLaunchAppList() const
{
    return d->settingFirstLaunchAppList;
}

QStringList ZBSettingsMain::languagesComboBoxModel() const
{
    return d->languagesComboBoxModel;
}

QStringList ZBSettingsMain::keyboardLanguagesComboBoxModel() const
{
    return d->keyboardLanguagesComboBoxModel;
}

bool ZBSettingsMain::militaryShippedAtStart() const
{
    return d->isMilitaryShipped;
}

bool ZBSettingsMain::isInternetConnected() const
{
    return d->isInternetConnected;
}
