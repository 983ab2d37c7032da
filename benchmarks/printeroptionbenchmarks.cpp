// Reading and setting the printer's options, against one parse of the file and one replacement of it.
#include "benchmarks.h"
#include "pairedmeasurement.h"

#include "cupssupport.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr Target readTarget = 3;
constexpr Target writeTarget = 1.5;

constexpr char start[] = "# printers\nDest Office sides=two-sided-long-edge\nDest BrackenXL ";
constexpr char typicalOptions[] =
    "orientation-requested=5 MirrorPrint=True NegativePrint=False Overprint=True WhiteBase=True CutMedia=2 "
    "Hoffset1=Custom.12 Hoffset2=Custom.-13 Voffset1=Custom.5 Voffset2=Custom.-6 Stop=Custom.1.5 "
    "Dithering=65 "
    "head1Offset=Custom.7 head2Offset=Custom.-8 R1TensionAdjust=Custom.-3 R2TensionAdjust=Custom.4 "
    "RibbonSaver=Enabled Feed=Custom.";

QByteArray textWithFeed(int feed)
{
    return QByteArray(start) + typicalOptions + QByteArray::number(feed) + '\n';
}

QString folder()
{
    return QDir::homePath() + QStringLiteral("/.cups");
}

QString optionsFile()
{
    return folder() + QStringLiteral("/lpoptions");
}

void fill()
{
    QFile file(optionsFile());
    if (!QDir().mkpath(folder()) || !file.open(QIODevice::WriteOnly) || file.write(textWithFeed(77)) < 0)
        qFatal("Cannot write %s", qPrintable(file.fileName()));
}

QVariantList allOptions(const CupsSupport &options)
{
    return {int(options.getOrientation()),
            options.getMirror(),
            options.getInverse(),
            options.getOverprint(),
            options.getWhiteBase(),
            options.getCut(),
            options.getOffsetH1(),
            options.getOffsetH2(),
            options.getOffsetV1(),
            options.getOffsetV2(),
            options.getStop(),
            options.getDithering(),
            options.getColorHeadOffset(1),
            options.getColorHeadOffset(2),
            options.getR1Tension(),
            options.getR2Tension(),
            options.getRibbonSaver(),
            options.getFeed()};
}

using Values = QMap<QByteArray, QByteArray>;

Values parsedFile()
{
    Values values;
    QFile file(optionsFile());
    file.open(QIODevice::ReadOnly);
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (!line.startsWith("Dest BrackenXL "))
            continue;
        const QList<QByteArray> options = line.mid(int(qstrlen("Dest BrackenXL "))).split(' ');
        for (const QByteArray &option : options) {
            const int sign = option.indexOf('=');
            values.insert(option.left(sign), option.mid(sign + 1));
        }
    }
    return values;
}

double number(const Values &values, const char *name)
{
    return QByteArray(values.value(name)).replace("Custom.", "").toDouble();
}

QVariantList listOf(const Values &values)
{
    const auto isOn = [&values](const char *name) {
        return values.value(name) == "True" || values.value(name) == "Enabled";
    };
    const auto whole = [&values](const char *name) { return int(number(values, name)); };
    return {whole("orientation-requested"),
            isOn("MirrorPrint"),
            isOn("NegativePrint"),
            isOn("Overprint"),
            isOn("WhiteBase"),
            whole("CutMedia"),
            whole("Hoffset1"),
            whole("Hoffset2"),
            whole("Voffset1"),
            whole("Voffset2"),
            number(values, "Stop"),
            whole("Dithering"),
            whole("head1Offset"),
            whole("head2Offset"),
            whole("R1TensionAdjust"),
            whole("R2TensionAdjust"),
            isOn("RibbonSaver"),
            whole("Feed")};
}

void measureReading(benchmark::State &state, const std::function<QVariantList()> &read, Target target)
{
    fill();
    QVariantList ourList;
    const Way ours{{}, [&] { ourList = read(); }, [&] { return ourList; }};
    Values values;
    const Way plain{{}, [&] { values = parsedFile(); }, [&] { return listOf(values); }};
    measurePair(state, ours, plain, target);
    QFile::remove(optionsFile());
}

void readAtAStart(benchmark::State &state)
{
    measureReading(
        state, [] { return allOptions(CupsSupport()); }, readTarget);
}

void readAgain(benchmark::State &state)
{
    const CupsSupport options;
    measureReading(
        state, [&options] { return allOptions(options); }, readTarget);
}

/// A new file beside the old one, synced and put in its place.
void replaceFile(const QByteArray &path, const QByteArray &text)
{
    const QByteArray newPath = path + ".new";
    const int file = open(newPath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    const bool isWritten =
        write(file, text.constData(), size_t(text.size())) == text.size() && fsync(file) == 0;
    close(file);
    if (!isWritten || std::rename(newPath.constData(), path.constData()) != 0)
        qFatal("Cannot write %s", path.constData());
}

void syncFolder(const QByteArray &path)
{
    const int directory = open(path.constData(), O_RDONLY | O_CLOEXEC);
    fsync(directory);
    close(directory);
}

/// The plain way writes a file of its own in a folder of its own.
void measureSetting(benchmark::State &state, bool isFolderSynced, Target target)
{
    fill();
    const QString plainFolder = QDir::homePath() + QStringLiteral("/plain");
    QDir().mkpath(plainFolder);
    const QByteArray plainPath = QFile::encodeName(plainFolder + QStringLiteral("/lpoptions"));

    CupsSupport options;
    int ourFeed = 0;
    const Way ours{{}, [&] { options.setFeed(10 + ++ourFeed % 50); }, [&] { return options.getFeed(); }};
    int plainFeed = 0;
    const Way plain{{},
                    [&] {
                        replaceFile(plainPath, textWithFeed(10 + ++plainFeed % 50));
                        if (isFolderSynced)
                            syncFolder(QFile::encodeName(plainFolder));
                    },
                    [&] { return 10 + plainFeed % 50; }};
    measurePair(state, ours, plain, target);
    QDir(plainFolder).removeRecursively();
    QFile::remove(optionsFile());
}

void setOne(benchmark::State &state)
{
    measureSetting(state, false, writeTarget);
}

void setOneWithFolder(benchmark::State &state)
{
    measureSetting(state, true, writeTarget);
}

} // namespace

void registerPrinterOptionBenchmarks()
{
    registerPair("printer options, at a start", readAtAStart);
    registerPair("printer options, read again", readAgain);
    registerPair("printer option set", setOne);
    registerPair("printer option set, folder synced", setOneWithFolder);
}
