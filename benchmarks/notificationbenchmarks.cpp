// A setting that the utility daemon is told about, against a QSettings and a call.
#include "benchmarks.h"
#include "pairedmeasurement.h"
#include "stage.h"
#include "utilitydaemonstage.h"

#include "zbsettingsmain.h"

#include <QtDBus/QDBusInterface>

using Stage::SettingsFile;

namespace {

void notify(benchmark::State &state)
{
    UtilityDaemonStage &daemon = UtilityDaemonStage::instance();
    daemon.wantPresent();
    const SettingsFile ourFile = SettingsFile::library();
    const SettingsFile plainFile = SettingsFile::plain();
    ourFile.fill();
    plainFile.fill();
    ZBSettingsMain settings(nullptr, false);
    QDBusInterface interface(QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
                             QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QDBusConnection::systemBus());
    daemon.takeCalls();

    // The daemon must have something to change in both runs.
    const auto setOtherLevel = [&interface] { interface.call(QStringLiteral("setDisplayBrightness"), 9U); };
    const auto levelOf = [](int run) { return uint(1 + run % 8); };

    int ourRuns = 0;
    const Way ours{setOtherLevel,
                   [&] { settings.setSetting(QStringLiteral("brightnessLevel"), levelOf(ourRuns++)); },
                   [&] {
                       return QVariantList{ourFile.content(), daemon.takeCalls()};
                   }};

    int plainRuns = 0;
    const Way plain{setOtherLevel,
                    [&] {
                        const uint level = levelOf(plainRuns++);
                        plainFile.open().setValue(QStringLiteral("display/brightnessLevel"), level);
                        interface.call(QStringLiteral("setDisplayBrightness"), level);
                    },
                    [&] {
                        return QVariantList{plainFile.content(), daemon.takeCalls()};
                    }};

    measurePair(state, ours, plain, noTarget);
    ourFile.remove();
    plainFile.remove();
}

} // namespace

void registerNotificationBenchmarks()
{
    registerPair("setSetting with notification", notify);
}
