// One read of the About page, against the same tool run by hand.
#include "benchmarks.h"
#include "pairedmeasurement.h"

#include "zbsettingsmain.h"
#include "zbsettingsqmlenums.h"

#include <QtCore/QProcess>

#include <memory>

namespace {

QString plainRead()
{
    QProcess tool;
    tool.start(QStringLiteral("cat"), {QStringLiteral("/sys/class/net/wlan0/address")});
    tool.waitForFinished(500);
    return QString::fromUtf8(tool.readAllStandardOutput());
}

void readAbout(benchmark::State &state)
{
    ZBSettingsMain settings(nullptr, false);
    QString ourText;
    const Way ours{{},
                   [&] { ourText = settings.getAboutInfo(ZBSettingsAboutInfoFields::WIRELESS_ADDRESS); },
                   [&] { return ourText; }};
    QString text;
    const Way plain{{}, [&] { text = plainRead(); }, [&] { return text; }};
    measurePair(state, ours, plain, noTarget);
}

} // namespace

void registerAboutBenchmarks()
{
    registerPair("one About value", readAbout);
}
