// What a ZBSettingsMain keeps: constants, cached settings, and its links to the rest of the device.
#pragma once

#include "zblocalelanguages.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>

class QLocalServer;
class QLocalSocket;
class QProcess;

struct ZBSettingsMainPrivate
{
    const QString GROUP_LOCALE = QStringLiteral("locale");
    const QString GROUP_DISPLAY = QStringLiteral("display");
    const QString GROUP_PRIVACY = QStringLiteral("privacy");
    const QString GROUP_DATETIME = QStringLiteral("dateTime");
    const QString GROUP_UPDATES = QStringLiteral("updates");
    const QString GROUP_INIT = QStringLiteral("initialization");
    const QString GROUP_LOCKSCREEN = QStringLiteral("lockscreen");
    const QString GROUP_HOME = QStringLiteral("home");

    const QString KEY_LANGUAGE = QStringLiteral("language");
    const QString KEY_UNITS = QStringLiteral("units");
    const QString KEY_KEYBOARD_LAYOUT = QStringLiteral("keyboardLayout");
    const QString KEY_DISPLAY_BRIGHTNESS = QStringLiteral("brightnessLevel");
    const QString KEY_DISPLAY_DIMMING = QStringLiteral("dimmingInactive");
    const QString KEY_DISPLAY_POWER = QStringLiteral("powerInactive");
    const QString KEY_PRIVACY_ANALYTICS = QStringLiteral("sendAnalytics");
    const QString KEY_MOUNT_SHARED_FOLDER = QStringLiteral("mountSharedFolder");
    const QString KEY_DATETIME_24HOUR = QStringLiteral("24Hour");
    const QString KEY_DATETIME_AUTO = QStringLiteral("automaticDateTime");
    const QString KEY_DATETIME_FORMAT = QStringLiteral("dateFormat");
    const QString KEY_UPDATE_AUTOCHECK = QStringLiteral("automaticUpdateCheck");
    const QString KEY_UPDATE_LASTCHECK = QStringLiteral("lastUpdateCheck");
    const QString KEY_INIT_FIRSTBOOTAPP = QStringLiteral("firstBootApplication");
    const QString KEY_INIT_FIRSTBOOTPAGE = QStringLiteral("firstBootDefaultPage");
    const QString KEY_LOCK_AUTO = QStringLiteral("lockscreenAuto");
    const QString KEY_ZOOMLEVEL = QStringLiteral("zoomLevel");
    const QString KEY_APPCOLLAPSED = QStringLiteral("appListCollapsed");
    const QString KEY_DOUBLECLICK = QStringLiteral("doubleClickOpen");
    const QString KEY_FIRSTLAUNCHLIST = QStringLiteral("appFirstLaunchList");

    QString settingLanguage;
    uint settingUnits = 0;
    QString settingKeyboardLayout;
    uint settingDisplayBrightness = 0;
    int settingDisplayDimming = 0;
    int settingDisplayPower = 0;
    bool settingPrivacyAnalytics = false;
    bool settingDateTime24Hour = false;
    bool settingDateTimeAuto = false;
    QString settingDateFormat;
    bool settingUpdateAutoCheck = false;
    QString settingUpdateLastCheck;
    bool settingFirstBootApplication = false;
    bool settingLockscreenAuto = false;
    uint settingZoomeLevel = 0;
    bool settingAppCollapsed = false;
    bool settingDoubleClickOpen = false;
    bool settingMountSharedFolder = false;
    QStringList settingFirstLaunchAppList;
    QStringList languagesComboBoxModel;
    QStringList keyboardLanguagesComboBoxModel;

    bool isMilitaryShipped = false;
    bool isInternetConnected = false;

    QString analyticsSessionId;

    ZBLocaleLanguages locale{nullptr};
    QDBusInterface utilityDaemon{QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
                                 QStringLiteral("local.ZBUtilityd.UtilityDaemon"),
                                 QDBusConnection::systemBus()};

    // Children of the ZBSettingsMain or, for the client, of its server.
    QProcess *clockProcess = nullptr;
    QProcess *queryProcess = nullptr;
    QLocalServer *localServer = nullptr;
    QLocalSocket *currentClient = nullptr;
};
