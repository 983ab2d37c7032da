// Construction of ZBSettingsMain, and reading and writing one setting.
#include "zbsettingsmain.h"

#include "daemoncall.h"
#include "settingnotification.h"
#include "settingsschema.h"
#include "settingsstore.h"
#include "zbsettingsmain_p.h"

#include <QtCore/QProcess>

ZBSettingsMain::ZBSettingsMain(QObject *parent, bool runLocalServer)
    : QObject(parent)
    , d(std::make_unique<ZBSettingsMainPrivate>())
{
    if (runLocalServer)
        startLocalServer();
    linkToUtilityDaemon();

    d->clockProcess = new QProcess(this);
    d->clockProcess->setProgram(QStringLiteral("timedatectl"));

    readSettings();

    d->languagesComboBoxModel = getLanguageComboBoxModel();
    d->keyboardLanguagesComboBoxModel = getKeyboardLanguageComboBoxModel();
    d->isMilitaryShipped = isMilitaryShipped();
}

ZBSettingsMain::~ZBSettingsMain() = default;

void ZBSettingsMain::readSettings()
{
    d->settingLanguage = getSetting(d->KEY_LANGUAGE, QString()).toString();
    d->settingUnits = getSetting(d->KEY_UNITS, QString()).toUInt();
    d->settingKeyboardLayout = getSetting(d->KEY_KEYBOARD_LAYOUT, QString()).toString();
    d->settingDisplayBrightness = getSetting(d->KEY_DISPLAY_BRIGHTNESS, 7).toUInt();
    d->settingDisplayDimming = getSetting(d->KEY_DISPLAY_DIMMING, 2).toInt();
    d->settingDisplayPower = getSetting(d->KEY_DISPLAY_POWER, 11).toInt();
    d->settingPrivacyAnalytics = getSetting(d->KEY_PRIVACY_ANALYTICS, true).toBool();
    d->settingMountSharedFolder = getSetting(d->KEY_MOUNT_SHARED_FOLDER, false).toBool();
    d->settingDateTime24Hour = getSetting(d->KEY_DATETIME_24HOUR, false).toBool();
    d->settingDateTimeAuto = getSetting(d->KEY_DATETIME_AUTO, true).toBool();
    d->settingDateFormat = getSetting(d->KEY_DATETIME_FORMAT, QStringLiteral("MM/dd/yy")).toString();
    d->settingUpdateAutoCheck = getSetting(d->KEY_UPDATE_AUTOCHECK, true).toBool();
    d->settingUpdateLastCheck = getSetting(d->KEY_UPDATE_LASTCHECK, QString()).toString();
    d->settingFirstBootApplication = getSetting(d->KEY_INIT_FIRSTBOOTAPP, false).toBool();
    d->settingLockscreenAuto = getSetting(d->KEY_LOCK_AUTO, true).toBool();
    d->settingZoomeLevel = getSetting(d->KEY_ZOOMLEVEL, 2).toUInt();
    d->settingAppCollapsed = getSetting(d->KEY_APPCOLLAPSED, false).toBool();
    d->settingFirstLaunchAppList = getSetting(d->KEY_FIRSTLAUNCHLIST, QStringList()).toStringList();
    d->settingDoubleClickOpen = getSetting(d->KEY_DOUBLECLICK, false).toBool();
}

void ZBSettingsMain::setSetting(QString settingKey, QVariant settingValue)
{
    SettingsStore store;

    QVariant storedValue = settingValue;
    if (settingKey == d->KEY_FIRSTLAUNCHLIST) {
        const QStringList launched = d->settingFirstLaunchAppList + QStringList(settingValue.toString());
        storedValue = launched;
        d->settingFirstLaunchAppList = launched;
        Q_EMIT settingFirstLaunchAppListChanged(launched);
    }

    store.setValue(SettingsSchema::writePath(settingKey), storedValue);

    if (const SettingNotification *const notification = notificationFor(settingKey)) {
        callDaemon(d->utilityDaemon, QLatin1String(notification->method), notification->failureText,
                   {notification->argument(settingValue)});
    }
}

QVariant ZBSettingsMain::getSetting(QString settingKey, QVariant defaultValue)
{
    const SettingsStore store;
    return store.value(SettingsSchema::readPath(settingKey), defaultValue);
}
