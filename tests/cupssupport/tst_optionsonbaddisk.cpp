// A full disk and a home folder that cannot be written: one line in the log, the old file, and all is well
// again when there is room.
//
// The disk is one in memory that a process of its own mounts. Where that is not allowed the rows are skipped.
#include "childprocess.h"
#include "cupssupport.h"
#include "messagelog.h"
#include "optionshome.h"
#include "smalldisk.h"

#include <QtTest/QtTest>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int notAllowed = 77;

/// A file of two disk blocks and a bit, so that there can be room for a part of it.
QByteArray before()
{
    QByteArray result("Dest BrackenXL Feed=Custom.3\n");
    for (int i = 0; i < 300; ++i)
        result += "Dest Ghost" + QByteArray::number(i) + " Feed=Custom.9\n";
    return result;
}

QByteArray after()
{
    return before().replace("Custom.3\n", "Custom.4\n");
}

void setTwice(CupsSupport &options)
{
    options.setFeed(4);
    options.setFeed(4);
}

/// What happens on the bad disk \a home; empty when all is as it should be.
QString complaint(const OptionsHome &home, const QString &kind, int freeKilobytes)
{
    const bool isReadOnly = kind == QLatin1String("read-only");
    if (!home.write(before()) || (isReadOnly && !SmallDisk::makeReadOnly(qgetenv("TMPDIR"), true))
        || (!isReadOnly && !SmallDisk::fill(home.path(), freeKilobytes)))
        return QStringLiteral("the disk could not be made bad");
    CupsSupport options;
    const MessageLog log;
    setTwice(options);
    const QString reason =
        isReadOnly ? QStringLiteral("Read-only file system") : QStringLiteral("No space left on device");
    const QString expected =
        QStringLiteral("printer options cannot be written to %1: %2").arg(home.userFile(), reason);
    if (log.texts() != QStringList{expected})
        return log.texts().join(QStringLiteral("; "));
    if (home.text() != before() || home.files() != QStringList{QStringLiteral("lpoptions")})
        return QStringLiteral("not the old file alone");
    if (options.getFeed() != 3)
        return QStringLiteral("reads as if it were written");

    if (!(isReadOnly ? SmallDisk::makeReadOnly(qgetenv("TMPDIR"), false) : SmallDisk::clear(home.path())))
        return QStringLiteral("the disk could not be made good");
    setTwice(options);
    if (home.text() != after() || home.files() != QStringList{QStringLiteral("lpoptions")}
        || log.texts().size() != 1)
        return QStringLiteral("not written afterwards");
    return {};
}

} // namespace

class TestOptionsOnBadDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oldFileStaysAndOneLineIsLogged_data();
    void oldFileStaysAndOneLineIsLogged();
    void folderThatCannotBeWritten();
};

void TestOptionsOnBadDisk::oldFileStaysAndOneLineIsLogged_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("freeKilobytes");
    QTest::newRow("full") << QStringLiteral("full") << 0;
    QTest::newRow("room for a part") << QStringLiteral("full") << 4;
    QTest::newRow("read-only") << QStringLiteral("read-only") << 0;
}

void TestOptionsOnBadDisk::oldFileStaysAndOneLineIsLogged()
{
    QFETCH(QString, kind);
    QFETCH(int, freeKilobytes);
    const OptionsHome home;
    ChildProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--disk"), home.path(), kind, QString::number(freeKilobytes)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    if (process.exitCode() == notAllowed)
        QSKIP("no mount namespace here");
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), QString());
    QCOMPARE(process.exitCode(), 0);
}

void TestOptionsOnBadDisk::folderThatCannotBeWritten()
{
    if (geteuid() == 0)
        QSKIP("root may write everywhere");
    const OptionsHome home;
    QVERIFY(home.write(before()));
    const QByteArray folder = QFile::encodeName(home.cupsFolder());
    QCOMPARE(chmod(folder.constData(), 0500), 0);
    CupsSupport options;
    const MessageLog log;
    setTwice(options);
    QCOMPARE(log.texts().size(), 1);
    QVERIFY(log.texts().constFirst().endsWith(QStringLiteral(": Permission denied")));
    QCOMPARE(home.text(), before());
    QCOMPARE(chmod(folder.constData(), 0700), 0);
    setTwice(options);
    QCOMPARE(home.text(), after());
}

int main(int argc, char **argv)
{
    const bool isOnDisk = argc == 5 && qstrcmp(argv[1], "--disk") == 0;
    if (!isOnDisk) {
        const QCoreApplication application(argc, argv);
        TestOptionsOnBadDisk test;
        return QTest::qExec(&test, argc, argv);
    }
    if (!SmallDisk::mountOn(argv[2]))
        return notAllowed;
    qputenv("TMPDIR", argv[2]);
    int result = 0;
    {
        const OptionsHome home;
        const QString text = complaint(home, QString::fromLocal8Bit(argv[3]), QByteArray(argv[4]).toInt());
        std::fputs(qPrintable(text), stdout);
        result = text.isEmpty() ? 0 : 1;
    }
    return result;
}
#include "tst_optionsonbaddisk.moc"
