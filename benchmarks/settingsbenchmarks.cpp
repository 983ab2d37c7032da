// Reading and writing one setting, against a QSettings made for it.
#include "benchmarks.h"
#include "disksync.h"
#include "pairedmeasurement.h"
#include "stage.h"

#include "zbsettingsmain.h"

#include <QtCore/QVariant>

#include <functional>

using Stage::SettingsFile;

namespace {

constexpr Target readTarget = 1.1;
constexpr Target writeTarget = 1.1;

const QString key = QStringLiteral("brightnessLevel");
const QString path = QStringLiteral("display/brightnessLevel");

// A key that nobody is told about.
const QString quietKey = QStringLiteral("zoomLevel");
const QString quietPath = QStringLiteral("home/zoomLevel");

/// Both sides read the same file; \a prepare readies it before each read and is given the number of the read
/// on that side.
void measureReading(benchmark::State &state, const std::function<void(int)> &prepare)
{
    ZBSettingsMain settings(nullptr, false);
    const SettingsFile file = SettingsFile::library();

    int ourReads = 0;
    QVariant ourValue;
    const Way ours{[&] { prepare(ourReads++); }, [&] { ourValue = settings.getSetting(key, 7); },
                   [&] { return ourValue; }};

    int plainReads = 0;
    QVariant plainValue;
    const Way plain{[&] { prepare(plainReads++); }, [&] { plainValue = file.open().value(path, 7); },
                    [&] { return plainValue; }};

    measurePair(state, ours, plain, readTarget);
}

void readPresent(benchmark::State &state)
{
    SettingsFile::library().fill();
    measureReading(state, [](int) {});
}

void readAbsent(benchmark::State &state)
{
    SettingsFile::library().remove();
    measureReading(state, [](int) {});
}

void readChanged(benchmark::State &state)
{
    const SettingsFile file = SettingsFile::library();
    measureReading(state, [&file](int read) { file.fill(read % 10); });
}

/// Each side writes its own file, \a count times in a row, with a different value each time.
void measureWriting(benchmark::State &state, int count, Target target)
{
    const SettingsFile ourFile = SettingsFile::library();
    const SettingsFile plainFile = SettingsFile::plain();
    ourFile.fill();
    plainFile.fill();
    ZBSettingsMain settings(nullptr, false);

    int ourWrites = 0;
    const Way ours{{},
                   [&] {
                       for (int i = 0; i < count; ++i)
                           settings.setSetting(quietKey, ++ourWrites % 10);
                   },
                   [&] { return ourFile.content(); }};

    int plainWrites = 0;
    const Way plain{{},
                    [&] {
                        for (int i = 0; i < count; ++i)
                            plainFile.open().setValue(quietPath, ++plainWrites % 10);
                    },
                    [&] { return plainFile.content(); }};

    measurePair(state, ours, plain, target);
    ourFile.remove();
    plainFile.remove();
}

void writeOnce(benchmark::State &state)
{
    measureWriting(state, 1, writeTarget);
}

void writeTenTimes(benchmark::State &state)
{
    measureWriting(state, 10, writeTarget);
}

void writeWithoutSyncs(benchmark::State &state)
{
    const DiskSync::LeftOut leftOut;
    measureWriting(state, 1, noTarget);
}

} // namespace

void registerSettingsBenchmarks()
{
    registerPair("getSetting, file present", readPresent);
    registerPair("getSetting, file absent", readAbsent);
    registerPair("getSetting, file changed before", readChanged);
    registerPair("setSetting", writeOnce);
    registerPair("setSetting, ten in a row", writeTenTimes);
    registerPair("setSetting, disk syncs left out", writeWithoutSyncs);
}
