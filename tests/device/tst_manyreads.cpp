// A thousand reads of the About page: no process and no file descriptor is left behind, and memory grows by
// the process objects that are kept.
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <malloc.h>
#include <unistd.h>

// There when the program is linked with the address sanitizer, whose heap mallinfo2() does not see.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace {

constexpr int readCount = 1000;
/// What one kept object may take, in bytes. Measured: 500 without a tool run, 2000 to 6000 with one.
constexpr qint64 largestObject = 8000;

qint64 allocatedBytes()
{
    if (__sanitizer_get_current_allocated_bytes)
        return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

int openFiles()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

/// Ids of the living and dead children of this process, of whichever thread.
QList<QByteArray> childProcesses()
{
    QList<QByteArray> children;
    const QStringList threads =
        QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &thread : threads) {
        QFile file(QStringLiteral("/proc/self/task/%1/children").arg(thread));
        if (file.open(QIODevice::ReadOnly))
            children += file.readAll().simplified().split(' ');
    }
    children.removeAll({});
    return children;
}

} // namespace

class TestManyReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void readsLeaveOnlyTheKeptObjects_data();
    void readsLeaveOnlyTheKeptObjects();
};

void TestManyReads::cleanup()
{
    qunsetenv("ZB_LARGE_VARIABLE");
    SettingsFile::removeAll();
}

void TestManyReads::readsLeaveOnlyTheKeptObjects_data()
{
    QTest::addColumn<int>("field");
    QTest::newRow("serial number") << 0;
    QTest::newRow("version, no tool") << 1;
    QTest::newRow("storage with complaints") << 2;
    QTest::newRow("wireless address, no such tool") << 4;
}

void TestManyReads::readsLeaveOnlyTheKeptObjects()
{
    QFETCH(int, field);
    RecordingTools tools;
    tools.setOutput(QStringLiteral("fw_printenv"), "BX24460173\n");
    tools.setOutput(QStringLiteral("df"), QByteArray(20000, 'x'),
                    {RecordingTools::complain(20000), RecordingTools::print()});
    tools.remove(QStringLiteral("cat"));
    QVERIFY(tools.isReady());
    // A copy of the environment in every object would show.
    qputenv("ZB_LARGE_VARIABLE", QByteArray(60000, 'x'));
    ZBSettingsMain settings(nullptr, false);
    // What the first runs make for good is no growth.
    for (int i = 0; i < 10; ++i)
        settings.getAboutInfo(field);
    QCoreApplication::processEvents();
    const int objects = settings.findChildren<QProcess *>().size();
    const int files = openFiles();
    const qint64 bytes = allocatedBytes();

    for (int i = 0; i < readCount; ++i)
        settings.getAboutInfo(field);
    const qint64 bytesEach = (allocatedBytes() - bytes) / readCount;
    QCOMPARE(settings.findChildren<QProcess *>().size(), objects + readCount);
    QCOMPARE(openFiles(), files);
    QCOMPARE(childProcesses(), QList<QByteArray>());
    qInfo("%lld bytes for each kept object", bytesEach);
    QVERIFY2(bytesEach <= largestObject, QByteArray::number(bytesEach).constData());

    QCoreApplication::processEvents();
    QCOMPARE(settings.findChildren<QProcess *>().size(), objects + readCount);
    QCOMPARE(openFiles(), files);
}

QTEST_GUILESS_MAIN(TestManyReads)
#include "tst_manyreads.moc"
