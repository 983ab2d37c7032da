// ZBSettingsMain: the system settings of the device, for QML and C++.
//
// One object per Settings application. It reads and writes the INI settings file that every
// application of the device shares, tells the utility daemon what changed, follows the state of the
// internet connection, lets another process select a tab, and carries out the device operations of
// the settings pages.
#pragma once

#include "zbsettings_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <memory>

struct ZBSettingsMainPrivate;

/**
 * The system settings back end that a Settings application hands to QML.
 *
 * \par Settings file
 * The user-scope INI file of organisation "Corvanta" and application "Brindlemark"
 * (`$XDG_CONFIG_HOME/Corvanta/Brindlemark.ini`, by default below `~/.config`). It is opened afresh for every
 * read and every write, so a read sees what other processes wrote before it. A missing file is no error:
 * every read then gives its default, and nothing is written until the first setSetting().
 *
 * \par Properties
 * All properties are read-only. The `GROUP_*` and `KEY_*` constants name the groups and keys of the settings
 * file. The `setting*` properties hold what the file said when the object was constructed and keep those
 * values; only `settingFirstLaunchAppList` and `isInternetConnected` change later. A page keeps its own view
 * of what it has set. Of the change signals the object emits three itself:
 * settingFirstLaunchAppListChanged(), isInternetConnectedChanged() and tabEnumChanged(). The others are there
 * for the QML side to emit.
 *
 * \par Threads and blocking
 * Everything runs on the thread that created the object, which must have an event loop. Calls to the utility
 * daemon wait for its answer: normally less than a millisecond, and until the D-Bus time-out (25 s) when the
 * daemon is there but does not answer. A daemon that is not running fails at once. A tool that is read back,
 * and the tool of setDate(), is waited for 500 ms at most; taking in an output of megabytes comes on top of
 * that.
 *
 * \par Errors
 * No slot returns an error, and work goes on. Calls of the daemon that fail, and an environment file that
 * cannot be opened, are logged with qDebug(); of a tool that fails nothing is said. There is one exception: a
 * key that is not in the schema raises `std::out_of_range` with the text "map::at". C++ callers catch it. A
 * QML engine must never see it: the QML module Corvanta.Settings turns it into a JavaScript `Error`.
 */
class ZBSETTINGS_EXPORT ZBSettingsMain : public QObject
{
    Q_OBJECT

    // Group names of the settings file.
    Q_PROPERTY(QString GROUP_LOCALE READ GROUP_LOCALE CONSTANT)
    Q_PROPERTY(QString GROUP_DISPLAY READ GROUP_DISPLAY CONSTANT)
    Q_PROPERTY(QString GROUP_PRIVACY READ GROUP_PRIVACY CONSTANT)
    Q_PROPERTY(QString GROUP_DATETIME READ GROUP_DATETIME CONSTANT)
    Q_PROPERTY(QString GROUP_UPDATES READ GROUP_UPDATES CONSTANT)
    Q_PROPERTY(QString GROUP_INIT READ GROUP_INIT CONSTANT)
    Q_PROPERTY(QString GROUP_LOCKSCREEN READ GROUP_LOCKSCREEN CONSTANT)
    Q_PROPERTY(QString GROUP_HOME READ GROUP_HOME CONSTANT)

    // Keys of the settings file, the first argument of getSetting(), setSetting() and sendAnalyticHit().
    Q_PROPERTY(QString KEY_LANGUAGE READ KEY_LANGUAGE CONSTANT)
    Q_PROPERTY(QString KEY_UNITS READ KEY_UNITS CONSTANT)
    Q_PROPERTY(QString KEY_KEYBOARD_LAYOUT READ KEY_KEYBOARD_LAYOUT CONSTANT)
    Q_PROPERTY(QString KEY_DISPLAY_BRIGHTNESS READ KEY_DISPLAY_BRIGHTNESS CONSTANT)
    Q_PROPERTY(QString KEY_DISPLAY_DIMMING READ KEY_DISPLAY_DIMMING CONSTANT)
    Q_PROPERTY(QString KEY_DISPLAY_POWER READ KEY_DISPLAY_POWER CONSTANT)
    Q_PROPERTY(QString KEY_PRIVACY_ANALYTICS READ KEY_PRIVACY_ANALYTICS CONSTANT)
    Q_PROPERTY(QString KEY_MOUNT_SHARED_FOLDER READ KEY_MOUNT_SHARED_FOLDER CONSTANT)
    Q_PROPERTY(QString KEY_DATETIME_24HOUR READ KEY_DATETIME_24HOUR CONSTANT)
    Q_PROPERTY(QString KEY_DATETIME_AUTO READ KEY_DATETIME_AUTO CONSTANT)
    Q_PROPERTY(QString KEY_DATETIME_FORMAT READ KEY_DATETIME_FORMAT CONSTANT)
    Q_PROPERTY(QString KEY_UPDATE_AUTOCHECK READ KEY_UPDATE_AUTOCHECK CONSTANT)
    Q_PROPERTY(QString KEY_UPDATE_LASTCHECK READ KEY_UPDATE_LASTCHECK CONSTANT)
    Q_PROPERTY(QString KEY_INIT_FIRSTBOOTAPP READ KEY_INIT_FIRSTBOOTAPP CONSTANT)
    Q_PROPERTY(QString KEY_INIT_FIRSTBOOTPAGE READ KEY_INIT_FIRSTBOOTPAGE CONSTANT)
    Q_PROPERTY(QString KEY_LOCK_AUTO READ KEY_LOCK_AUTO CONSTANT)
    Q_PROPERTY(QString KEY_ZOOMLEVEL READ KEY_ZOOMLEVEL CONSTANT)
    Q_PROPERTY(QString KEY_APPCOLLAPSED READ KEY_APPCOLLAPSED CONSTANT)
    Q_PROPERTY(QString KEY_DOUBLECLICK READ KEY_DOUBLECLICK CONSTANT)
    Q_PROPERTY(QString KEY_FIRSTLAUNCHLIST READ KEY_FIRSTLAUNCHLIST CONSTANT)

    /// Language code combined with region, for example "en_us"; empty when never chosen.
    Q_PROPERTY(QString settingLanguage READ settingLanguage NOTIFY settingLanguageChanged)
    /// 0 for imperial, 1 for metric; default 0.
    Q_PROPERTY(uint settingUnits READ settingUnits NOTIFY settingUnitsChanged)
    /// Code of the keyboard's language, for example "en"; empty when never chosen.
    Q_PROPERTY(QString settingKeyboardLayout READ settingKeyboardLayout NOTIFY settingKeyboardLayoutChanged)
    /// Brightness of the display, 1 to 9; default 7.
    Q_PROPERTY(
        uint settingDisplayBrightness READ settingDisplayBrightness NOTIFY settingDisplayBrightnessChanged)
    /// When to dim the display, as the index of the page's combo box; default 2.
    Q_PROPERTY(int settingDisplayDimming READ settingDisplayDimming NOTIFY settingDisplayDimmingChanged)
    /// When to turn the backlight off, as the index of the page's combo box; default 11.
    Q_PROPERTY(int settingDisplayPower READ settingDisplayPower NOTIFY settingDisplayPowerChanged)
    /// Whether the user lets the device send analytics; default true. sendAnalyticHit() does not look at it.
    Q_PROPERTY(
        bool settingPrivacyAnalytics READ settingPrivacyAnalytics NOTIFY settingPrivacyAnalyticsChanged)
    /// True for the 24-hour clock, false for AM/PM; default false.
    Q_PROPERTY(bool settingDateTime24Hour READ settingDateTime24Hour NOTIFY settingDateTime24HourChanged)
    /// Whether date and time come from the network; default true.
    Q_PROPERTY(bool settingDateTimeAuto READ settingDateTimeAuto NOTIFY settingDateTimeAutoChanged)
    /// Date format in the letters of QDate::toString(); default "MM/dd/yy".
    Q_PROPERTY(QString settingDateFormat READ settingDateFormat NOTIFY settingDateFormatChanged)
    /// Whether the device looks for updates by itself; default true.
    Q_PROPERTY(bool settingUpdateAutoCheck READ settingUpdateAutoCheck NOTIFY settingUpdateAutoCheckChanged)
    /// Time stamp of the last successful look for updates; empty when there was none.
    Q_PROPERTY(
        QString settingUpdateLastCheck READ settingUpdateLastCheck NOTIFY settingUpdateLastCheckChanged)
    /// Whether the first-boot application shows after a restart; default false.
    Q_PROPERTY(bool settingFirstBootApplication READ settingFirstBootApplication NOTIFY
                   settingFirstBootApplicationChanged)
    /// Whether the lock screen shows after a restart; default true.
    Q_PROPERTY(bool settingLockscreenAuto READ settingLockscreenAuto NOTIFY settingLockscreenAutoChanged)
    /// Size of previews and icons in the home screen's file browser; default 2. The extra letter stays.
    Q_PROPERTY(uint settingZoomeLevel READ settingZoomeLevel NOTIFY settingZoomeLevelChanged)
    /// Whether the home screen's application list is collapsed; default false.
    Q_PROPERTY(bool settingAppCollapsed READ settingAppCollapsed NOTIFY settingAppCollapsedChanged)
    /// Whether the home screen opens on a double click; default false.
    Q_PROPERTY(bool settingDoubleClickOpen READ settingDoubleClickOpen NOTIFY settingDoubleClickOpenChanged)
    /// Whether the shared folder is offered over USB; default false.
    Q_PROPERTY(
        bool settingMountSharedFolder READ settingMountSharedFolder NOTIFY settingMountSharedFolderChanged)
    /// Names of the applications that were launched once, oldest first; grows with setSetting().
    Q_PROPERTY(QStringList settingFirstLaunchAppList READ settingFirstLaunchAppList NOTIFY
                   settingFirstLaunchAppListChanged)
    /// Language names for a combo box, in the language of the user interface at construction.
    Q_PROPERTY(
        QStringList languagesComboBoxModel READ languagesComboBoxModel NOTIFY languagesComboBoxModelChanged)
    /// Keyboard layout names for a combo box, in the language of the user interface at construction.
    Q_PROPERTY(QStringList keyboardLanguagesComboBoxModel READ keyboardLanguagesComboBoxModel NOTIFY
                   keyboardLanguagesComboBoxModelChanged)
    /// Whether the device was in the military ship mode at construction. From QML this name is always the
    /// property; the slot of the same name, which asks again, is reached from C++.
    Q_PROPERTY(bool isMilitaryShipped READ militaryShippedAtStart NOTIFY isMilitaryShippedChanged)
    /// Whether the utility daemon says that the device is on the internet; false without a daemon.
    Q_PROPERTY(bool isInternetConnected READ isInternetConnected NOTIFY isInternetConnectedChanged)

public:
    /**
     * Reads every setting and links to the utility daemon.
     *
     * A daemon that is not running is logged ("failed to create the utilityd interface, is it running?"); its
     * signal is then never followed by this object, also when it starts later, though calls reach it from
     * then on. A daemon that owns its name but hangs blocks the constructor until the D-Bus time-outs pass.
     *
     * \param parent owner in the object tree
     * \param runLocalServer whether this instance listens on the local socket through which another process
     *        selects a tab. The socket is named after QCoreApplication::applicationName(); a name left behind
     *        by a crashed application, or still in use by a running one, is taken over.
     */
    explicit ZBSettingsMain(QObject *parent, bool runLocalServer);
    ~ZBSettingsMain() override;

    /**
     * Sets the session identifier that goes with every later sendAnalyticHit(); empty until it is set.
     * For the embedding application only, hence neither a property nor a slot.
     */
    void setAnalyticsSessionId(const QString &sessionId);

    QString GROUP_LOCALE() const;
    QString GROUP_DISPLAY() const;
    QString GROUP_PRIVACY() const;
    QString GROUP_DATETIME() const;
    QString GROUP_UPDATES() const;
    QString GROUP_INIT() const;
    QString GROUP_LOCKSCREEN() const;
    QString GROUP_HOME() const;

    QString KEY_LANGUAGE() const;
    QString KEY_UNITS() const;
    QString KEY_KEYBOARD_LAYOUT() const;
    QString KEY_DISPLAY_BRIGHTNESS() const;
    QString KEY_DISPLAY_DIMMING() const;
    QString KEY_DISPLAY_POWER() const;
    QString KEY_PRIVACY_ANALYTICS() const;
    QString KEY_MOUNT_SHARED_FOLDER() const;
    QString KEY_DATETIME_24HOUR() const;
    QString KEY_DATETIME_AUTO() const;
    QString KEY_DATETIME_FORMAT() const;
    QString KEY_UPDATE_AUTOCHECK() const;
    QString KEY_UPDATE_LASTCHECK() const;
    QString KEY_INIT_FIRSTBOOTAPP() const;
    QString KEY_INIT_FIRSTBOOTPAGE() const;
    QString KEY_LOCK_AUTO() const;
    QString KEY_ZOOMLEVEL() const;
    QString KEY_APPCOLLAPSED() const;
    QString KEY_DOUBLECLICK() const;
    QString KEY_FIRSTLAUNCHLIST() const;

    QString settingLanguage() const;
    uint settingUnits() const;
    QString settingKeyboardLayout() const;
    uint settingDisplayBrightness() const;
    int settingDisplayDimming() const;
    int settingDisplayPower() const;
    bool settingPrivacyAnalytics() const;
    bool settingDateTime24Hour() const;
    bool settingDateTimeAuto() const;
    QString settingDateFormat() const;
    bool settingUpdateAutoCheck() const;
    QString settingUpdateLastCheck() const;
    bool settingFirstBootApplication() const;
    bool settingLockscreenAuto() const;
    uint settingZoomeLevel() const;
    bool settingAppCollapsed() const;
    bool settingDoubleClickOpen() const;
    bool settingMountSharedFolder() const;
    QStringList settingFirstLaunchAppList() const;
    QStringList languagesComboBoxModel() const;
    QStringList keyboardLanguagesComboBoxModel() const;
    bool militaryShippedAtStart() const;
    bool isInternetConnected() const;

Q_SIGNALS:
    void settingLanguageChanged(QString settingLanguage);
    void settingUnitsChanged(uint settingUnits);
    void settingKeyboardLayoutChanged(QString settingKeyboardLayout);
    void settingDisplayBrightnessChanged(uint settingDisplayBrightness);
    void settingDisplayDimmingChanged(int settingDisplayDimming);
    void settingDisplayPowerChanged(int settingDisplayPower);
    void settingPrivacyAnalyticsChanged(bool settingPrivacyAnalytics);
    void settingDateTime24HourChanged(bool settingDateTime24Hour);
    void settingDateTimeAutoChanged(bool settingDateTimeAuto);
    void settingDateFormatChanged(QString settingDateFormat);
    void settingUpdateAutoCheckChanged(bool settingUpdateAutoCheck);
    void settingUpdateLastCheckChanged(QString settingUpdateLastCheck);
    void settingFirstBootApplicationChanged(bool settingFirstBootApplication);
    void settingLockscreenAutoChanged(bool settingLockscreenAuto);
    void settingZoomeLevelChanged(uint settingZoomeLevel);
    void settingAppCollapsedChanged(bool settingAppCollapsed);
    void settingDoubleClickOpenChanged(bool settingDoubleClickOpen);
    void settingMountSharedFolderChanged(bool settingMountSharedFolder);
    /// Emitted by every setSetting() of `appFirstLaunchList`, with the whole new list.
    void settingFirstLaunchAppListChanged(QStringList settingFirstLaunchAppList);
    void languagesComboBoxModelChanged(QStringList languagesComboBoxModel);
    void keyboardLanguagesComboBoxModelChanged(QStringList keyboardLanguagesComboBoxModel);
    void isMilitaryShippedChanged(bool isMilitaryShipped);
    /// Emitted whenever the utility daemon reports the state, also when it reports the same one again.
    void isInternetConnectedChanged(bool isInternetConnected);
    /// Another process asked, through the local socket, to show the tab with this number
    /// (ZBSettingsTabNames::TabNames). Not checked: any number can arrive, 0 stands for "no number".
    void tabEnumChanged(int tabEnum);

public Q_SLOTS:
    /**
     * Stores one setting and, for six of the keys, tells the utility daemon.
     *
     * The value is stored as given, unchecked. `brightnessLevel`, `dimmingInactive`, `powerInactive`,
     * `automaticUpdateCheck`, `24Hour` and `dateFormat` are then passed on to the daemon; a call that fails
     * is logged and the value stays stored. The file is written before the slot returns, after the daemon has
     * answered. A file that cannot be written is not reported; with no room on the disk it keeps what it
     * holds.
     *
     * For `appFirstLaunchList` the value is one application name, which is added to the list (also when it is
     * in it already); settingFirstLaunchAppListChanged() follows. No other change signal is emitted.
     *
     * \throws std::out_of_range with the text "map::at" for a key outside the schema; nothing is written
     */
    void setSetting(QString settingKey, QVariant settingValue);
    /**
     * Reads one setting.
     *
     * \param settingKey one of the `KEY_*` constants, or "timezone"
     * \param defaultValue returned as it is when the file does not hold the key
     * \return the value as the settings file holds it, which is text or a list of texts unless this process
     *         wrote it itself: convert it with toBool(), toInt() and so on
     * \throws std::out_of_range with the text "map::at" for a key outside the schema
     */
    QVariant getSetting(QString settingKey, QVariant defaultValue = QVariant());

    /**
     * Sets the time of day with `timedatectl set-time` and does not wait for it. Whatever the parameters are
     * called, the first stands before the colon, where the tool expects the hours. Two digits each; nothing
     * is padded or checked. Lost when an earlier clock operation is still running; see timedatectl(1).
     */
    void setTime(QString minutes, QString hours);
    /// Sets the date with `timedatectl set-time` and waits for it, 500 ms at most. Sets the time to midnight.
    void setDate(QString year, QString month, QString day);
    /// Turns network time on or off with `timedatectl set-ntp` and does not wait for it. Stores nothing.
    void setAutoTime(bool enabled);

    /**
     * Writes the XKB layout and variant at this position of the keyboard layout list into the compositor's
     * environment file "/etc/corvanta/wayland.env" and waits until it has reached the storage. A position
     * that does not exist writes both keys empty. The compositor reads the file when it starts.
     *
     * The file is rewritten in place. The two lines end it: what stood behind the first of them is lost. A
     * file that is missing is made. When it cannot be opened, "failed to open wayland file" and "failed to
     * reopen wayland file" are logged.
     */
    void setKeyboardLanguage(int layoutIndex);
    /// Code of the language at this position of the language list, as text in a variant.
    QVariant getLanguageCode(int index);
    /// Position of the current language in the language list.
    int getLanguageIndex();
    /// Language names, in the current language of the user interface.
    QStringList getLanguageComboBoxModel();
    /// Keyboard layout names, in the current language of the user interface.
    QStringList getKeyboardLanguageComboBoxModel();

    /**
     * Text for one field of the About page (ZBSettingsAboutInfoFields::InfoFields), just as the tool printed
     * it, its last newline included; what a tool that fails or is slower than 500 ms has printed until then,
     * and empty when it is missing and for any other number. Of an output above 16 MB the rest is dropped.
     *
     * Each call runs the tool again and leaves a process object behind, which lives as long as this one: ask
     * when a person looks, do not poll.
     */
    QString getAboutInfo(int field);
    /// The printer's offsets as two lines of five values each, one line a print head, separated by ", ". A
    /// value that is missing is empty.
    QStringList formatOffsets();

    /**
     * Asks the utility daemon, and when that fails the boot-loader environment, whether the device is in the
     * military ship mode. Does not change the property of the same name.
     */
    bool isMilitaryShipped();
    /// Deletes the calibration values supplyTrans, cutterTrans and supplyRefl; does not wait for it.
    void resetSupplyCalibration();

    /**
     * Reports that the user changed a setting to the analytics library: one event with the key, the new value
     * as text and the session identifier. Whether the user allows it (`sendAnalytics`) is for the caller to
     * ask.
     */
    void sendAnalyticHit(QString settingName, QVariant newValue);
    /// Asks the utility daemon to look again; the answer comes as isInternetConnectedChanged().
    void checkInternetConnection();

private Q_SLOTS:
    void localSocketDataReceived();
    void newClientConnection();
    void internetConnectionChanged(bool isConnected);

private:
    void startLocalServer();
    void linkToUtilityDaemon();
    void readSettings();

    Q_DISABLE_COPY(ZBSettingsMain)
    const std::unique_ptr<ZBSettingsMainPrivate> d;
};
