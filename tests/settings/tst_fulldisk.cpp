// A disk that is full, or nearly: the settings file keeps what it holds, and takes values again when there is
// room.
//
// The disk is a small one in memory that a process of its own mounts, in a mount namespace that goes with it.
// Where that is not allowed the test is skipped; the limit of the file size that another test sets stands in
// for it there.
#include "childprocess.h"
#include "settingsfile.h"
#include "smalldisk.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <cstdio>

namespace {

constexpr int notAllowed = 77;

QByteArray manyKeys()
{
    QByteArray result("[Other]\n");
    for (int i = 100; i < 400; ++i)
        result += "key" + QByteArray::number(i) + "=kept by another program\n";
    return result;
}

/// What the process does on the disk; empty when all is as it should be.
QString complaintOnDisk(int freeKilobytes, bool isWritten, const QByteArray &value)
{
    const QByteArray content = manyKeys();
    const QByteArray contentWithUnits = content + "\n[locale]\nunits=" + value + '\n';
    const QString text = QString::fromLatin1(value);
    if (!SettingsFile::write(content) || !SmallDisk::fill(SettingsFile::folder(), freeKilobytes))
        return QStringLiteral("the disk could not be filled");

    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), text);
    if (SettingsFile::content() != (isWritten ? contentWithUnits : content))
        return QStringLiteral("on the full disk the file has %1 bytes").arg(SettingsFile::content().size());

    SmallDisk::clear(SettingsFile::folder());
    settings.setSetting(QStringLiteral("units"), text);
    if (SettingsFile::content() != contentWithUnits)
        return QStringLiteral("with room again the file has %1 bytes").arg(SettingsFile::content().size());
    if (QDir(SettingsFile::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
        != QStringList{QStringLiteral("Brindlemark.ini")})
        return QStringLiteral("something is left beside the file");
    return {};
}

} // namespace

class TestFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileKeepsWhatItHolds_data();
    void fileKeepsWhatItHolds();
    void cleanupTestCase();
};

void TestFullDisk::fileKeepsWhatItHolds_data()
{
    QTest::addColumn<int>("freeKilobytes");
    QTest::addColumn<bool>("isWritten");
    QTest::addColumn<int>("valueSize");
    QTest::newRow("full") << 0 << false << 1;
    QTest::newRow("room for the lock file") << 4 << false << 1;
    QTest::newRow("room for a part of the file") << 8 << false << 1;
    QTest::newRow("room for the file without its lock file") << 12 << false << 1;
    QTest::newRow("room for the file") << 300 << true << 1;
    QTest::newRow("room for a long text") << 110 << true << 10000;
    QTest::newRow("room for a part of a long text") << 110 << false << 100000;
}

void TestFullDisk::fileKeepsWhatItHolds()
{
    QFETCH(int, freeKilobytes);
    QFETCH(bool, isWritten);
    QFETCH(int, valueSize);
    QVERIFY(QDir().mkpath(SettingsFile::folder()));
    ChildProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--disk"), QString::number(freeKilobytes), QString::number(isWritten),
                   QString::number(valueSize)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    if (process.exitCode() == notAllowed)
        QSKIP("no mount namespace here");
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), QString());
    QCOMPARE(process.exitCode(), 0);
}

void TestFullDisk::cleanupTestCase()
{
    SettingsFile::removeAll();
}

int main(int argc, char **argv)
{
    // Before anything makes a thread, since a user namespace is for a process of one thread.
    const bool isOnDisk = argc == 5 && qstrcmp(argv[1], "--disk") == 0;
    if (isOnDisk && !SmallDisk::mountOn(qgetenv("XDG_CONFIG_HOME") + "/Corvanta"))
        return notAllowed;
    const QCoreApplication application(argc, argv);
    if (!isOnDisk) {
        TestFullDisk test;
        return QTest::qExec(&test, argc, argv);
    }
    const QString complaint = complaintOnDisk(QByteArray(argv[2]).toInt(), QByteArray(argv[3]).toInt() != 0,
                                              QByteArray(QByteArray(argv[4]).toInt(), '1'));
    std::fputs(qPrintable(complaint), stdout);
    return complaint.isEmpty() ? 0 : 1;
}
#include "tst_fulldisk.moc"
