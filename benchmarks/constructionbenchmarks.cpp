// Construction of a ZBSettingsMain, against the same reads and calls by themselves.
#include "benchmarks.h"
#include "pairedmeasurement.h"
#include "stage.h"
#include "utilitydaemonstage.h"

#include "zblocalelanguages.h"
#include "zbsettingsmain.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusReply>

using Stage::SettingsFile;

namespace {

constexpr Target constructionTarget = 1.2;

constexpr int militaryShipMode = 2;
constexpr int toolPatience = 500; // milliseconds

/// What an application knows about the device after the construction.
QVariantList knowledgeOf(const ZBSettingsMain &settings)
{
    return {
        settings.settingLanguage(),         settings.settingUnits(),
        settings.settingKeyboardLayout(),   settings.settingDisplayBrightness(),
        settings.settingDisplayDimming(),   settings.settingDisplayPower(),
        settings.settingPrivacyAnalytics(), settings.settingMountSharedFolder(),
        settings.settingDateTime24Hour(),   settings.settingDateTimeAuto(),
        settings.settingDateFormat(),       settings.settingUpdateAutoCheck(),
        settings.settingUpdateLastCheck(),  settings.settingFirstBootApplication(),
        settings.settingLockscreenAuto(),   settings.settingZoomeLevel(),
        settings.settingAppCollapsed(),     settings.settingFirstLaunchAppList(),
        settings.settingDoubleClickOpen(),  settings.isInternetConnected(),
        settings.languagesComboBoxModel(),  settings.keyboardLanguagesComboBoxModel(),
        settings.militaryShippedAtStart(),
    };
}

QVariant read(const SettingsFile &file, const QString &path, const QVariant &defaultValue)
{
    return file.open().value(path, defaultValue);
}

bool plainIsMilitaryShipped(QDBusInterface &daemon)
{
    const QDBusReply<int> mode = daemon.call(QStringLiteral("getShip"));
    if (mode.isValid())
        return mode.value() == militaryShipMode;
    QProcess tool;
    tool.start(QStringLiteral("fw_printenv"), {QStringLiteral("-n"), QStringLiteral("zbShip")});
    tool.waitForFinished(toolPatience);
    return QString::fromUtf8(tool.readAllStandardOutput()).toInt() == militaryShipMode;
}

class InternetStateReceiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void internetConnectionChanged(bool isConnected) { m_isConnected = isConnected; }

private:
    bool m_isConnected = false;
};

enum class Following { No, Yes };

/// With \a following the daemon's signal is connected too, as ours is always.
QVariantList plainKnowledge(const SettingsFile &file, Following following)
{
    const ZBLocaleLanguages locale(nullptr);
    QDBusInterface daemon(QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
                          QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QDBusConnection::systemBus());
    InternetStateReceiver receiver;
    if (following == Following::Yes) {
        daemon.connection().connect(daemon.service(), daemon.path(), daemon.interface(),
                                    QStringLiteral("onInternetConnectionChanged"), &receiver,
                                    SLOT(internetConnectionChanged(bool)));
    }
    const bool isConnected =
        daemon.isValid() && QDBusReply<bool>(daemon.call(QStringLiteral("getInternetConnection"))).value();
    return {
        read(file, QStringLiteral("locale/language"), QString()).toString(),
        read(file, QStringLiteral("locale/units"), QString()).toUInt(),
        read(file, QStringLiteral("locale/keyboardLayout"), QString()).toString(),
        read(file, QStringLiteral("display/brightnessLevel"), 7).toUInt(),
        read(file, QStringLiteral("display/dimmingInactive"), 2).toInt(),
        read(file, QStringLiteral("display/powerInactive"), 11).toInt(),
        read(file, QStringLiteral("sendAnalytics"), true).toBool(),
        read(file, QStringLiteral("mountSharedFolder"), false).toBool(),
        read(file, QStringLiteral("dateTime/24Hour"), false).toBool(),
        read(file, QStringLiteral("dateTime/automaticDateTime"), true).toBool(),
        read(file, QStringLiteral("dateTime/dateFormat"), QStringLiteral("MM/dd/yy")).toString(),
        read(file, QStringLiteral("updates/automaticUpdateCheck"), true).toBool(),
        read(file, QStringLiteral("updates/lastUpdateCheck"), QString()).toString(),
        read(file, QStringLiteral("initialization/firstBootApplication"), false).toBool(),
        read(file, QStringLiteral("lockscreen/lockscreenAuto"), true).toBool(),
        read(file, QStringLiteral("home/zoomLevel"), 2).toUInt(),
        read(file, QStringLiteral("home/appListCollapsed"), false).toBool(),
        read(file, QStringLiteral("home/appFirstLaunchList"), QStringList()).toStringList(),
        read(file, QStringLiteral("home/doubleClickOpen"), false).toBool(),
        isConnected,
        locale.getTrLanguageNamesList(),
        locale.getTranslatedKeyboardLayoutList(),
        plainIsMilitaryShipped(daemon),
    };
}

void measureConstruction(benchmark::State &state, Following following, Target target)
{
    const SettingsFile file = SettingsFile::library();
    file.fill();

    QVariantList ourKnowledge;
    const Way ours{{},
                   [&] {
                       const ZBSettingsMain settings(nullptr, false);
                       ourKnowledge = knowledgeOf(settings);
                   },
                   [&] { return ourKnowledge; }};

    QVariantList knowledge;
    const Way plain{{}, [&] { knowledge = plainKnowledge(file, following); }, [&] { return knowledge; }};

    measurePair(state, ours, plain, target);
    file.remove();
}

void wantDaemon()
{
    UtilityDaemonStage &daemon = UtilityDaemonStage::instance();
    daemon.wantPresent();
    daemon.control(QStringLiteral("SetInternetState"), {true});
    daemon.control(QStringLiteral("SetShip"), {militaryShipMode});
}

void constructWithDaemon(benchmark::State &state)
{
    wantDaemon();
    measureConstruction(state, Following::No, constructionTarget);
}

void constructWithDaemonFollowed(benchmark::State &state)
{
    wantDaemon();
    measureConstruction(state, Following::Yes, noTarget);
}

/// A boot-loader environment to ask where there is no daemon, found before the machine's own.
class BootLoaderTool
{
public:
    BootLoaderTool()
    {
        QFile tool(m_folder.filePath(QStringLiteral("fw_printenv")));
        if (!tool.open(QIODevice::WriteOnly) || tool.write("#!/bin/sh\necho 2\n") < 0)
            qFatal("Cannot write %s", qPrintable(tool.fileName()));
        tool.setPermissions(tool.permissions() | QFile::ExeOwner);
        qputenv("PATH", m_folder.path().toLocal8Bit() + ':' + m_oldPath);
    }
    ~BootLoaderTool() { qputenv("PATH", m_oldPath); }

private:
    Q_DISABLE_COPY(BootLoaderTool)
    const QTemporaryDir m_folder;
    const QByteArray m_oldPath = qgetenv("PATH");
};

void constructWithoutDaemon(benchmark::State &state)
{
    const BootLoaderTool tool;
    UtilityDaemonStage::instance().wantAbsent();
    measureConstruction(state, Following::No, constructionTarget);
}

} // namespace

void registerConstructionBenchmarks()
{
    registerPair("construction, daemon present", constructWithDaemon);
    registerPair("construction, both follow the daemon", constructWithDaemonFollowed);
    registerPair("construction, daemon absent", constructWithoutDaemon);
}

#include "constructionbenchmarks.moc"
