// What a writer does about other writers of the settings file: living ones are waited for, what dead ones
// have left costs no time, and every write leaves the file with a later modification time than it found.
#include "childprocess.h"
#include "messagelog.h"
#include "otherapplication.h"
#include "settingsfile.h"
#include "settingsfilelock.h"
#include "zbsettingsmain.h"

#include <QtCore/QLockFile>
#include <QtTest/QtTest>

#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The writer waits 32 s for a lock that nobody holds, unless it takes it away.
constexpr qint64 atOnceMilliseconds = 2000;
// How long a test looks whether a process that has to wait does wait.
constexpr int lookMilliseconds = 300;
constexpr int patienceMilliseconds = 30000;

QString lockPath()
{
    return SettingsFile::path() + QStringLiteral(".lock");
}

ino_t inodeOf(const QString &name)
{
    struct stat status
    {
    };
    return stat(QFile::encodeName(name).constData(), &status) == 0 ? status.st_ino : 0;
}

qint64 modificationTime()
{
    return QFileInfo(SettingsFile::path()).lastModified().toMSecsSinceEpoch();
}

bool setModificationTime(const QDateTime &time)
{
    QFile file(SettingsFile::path());
    return file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
}

/// Another process that holds a lock until it is told to let go: this program itself, see holdLock().
class Holder
{
public:
    explicit Holder(const QString &what)
    {
        m_process.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--hold"), what, SettingsFile::path()});
        m_holds = m_process.waitForReadyRead(patienceMilliseconds);
    }
    ~Holder()
    {
        m_process.kill();
        m_process.waitForFinished(patienceMilliseconds);
    }
    bool holds() const { return m_holds; }
    void letGo()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(patienceMilliseconds);
    }
    void die()
    {
        m_process.kill();
        m_process.waitForFinished(patienceMilliseconds);
    }

private:
    ChildProcess m_process;
    bool m_holds = false;
};

void tellAndWait()
{
    std::puts("holds");
    std::fflush(stdout);
    std::getchar();
}

/// The other process: takes a lock of the settings file \a path, says so, and lets go when its input ends.
int holdLock(const QByteArray &what, const QString &path)
{
    const QString lock = path + QStringLiteral(".lock");
    if (what == "filled lock file") {
        QLockFile file(lock);
        if (!file.lock())
            return 1;
        tellAndWait();
    } else if (what == "empty lock file") {
        // As QLockFile is between making its file and writing to it.
        const int file =
            open(QFile::encodeName(lock).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0 || flock(file, LOCK_EX | LOCK_NB) != 0)
            return 1;
        tellAndWait();
        unlink(QFile::encodeName(lock).constData());
    } else if (what == "folder") {
        const int folder = open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(),
                                O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0 || flock(folder, LOCK_EX | LOCK_NB) != 0)
            return 1;
        tellAndWait();
    }
    return 0;
}

} // namespace

class TestSettingsLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void emptyLockFileThatNobodyHoldsCostsNoTime();
    void lockFileOfADeadProcessCostsNoTime();
    void livingOwnerIsWaitedFor_data();
    void livingOwnerIsWaitedFor();
    void lockFileThatALivingProcessHoldsIsNotTakenAway_data();
    void lockFileThatALivingProcessHoldsIsNotTakenAway();
    void folderThatStaysLockedHoldsAWriteUpForASecondOnly();
    void folderIsFreeAgainAfterAWrite();
    void readerDoesNotWaitForAWriter();
    void folderIsMadeByTheFirstWrite();
    void firstWriteHoldsTheLockToo();
    void everyWriteMovesTheModificationTimeOn();
    void fileFromTheNearFutureStaysLaterThanBefore();
    void fileFromTheFarFutureTakesTheTimeOfTheWrite();
    void failedWriteLeavesTheModificationTime();
    void nothingIsLeftBesideTheFile();

private:
    std::unique_ptr<MessageLog> m_log;
};

void TestSettingsLock::init()
{
    SettingsFile::removeAll();
    QVERIFY(SettingsFile::write("[locale]\nlanguage=de_de\n"));
    m_log = std::make_unique<MessageLog>();
}

void TestSettingsLock::cleanup()
{
    m_log.reset();
    SettingsFile::removeAll();
}

void TestSettingsLock::emptyLockFileThatNobodyHoldsCostsNoTime()
{
    ZBSettingsMain settings(nullptr, false);
    QFile lock(lockPath());
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.close();
    QElapsedTimer timer;
    timer.start();
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY2(timer.elapsed() < atOnceMilliseconds, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\nunits=1\n"));
    QVERIFY(!QFile::exists(lockPath()));
}

void TestSettingsLock::lockFileOfADeadProcessCostsNoTime()
{
    ZBSettingsMain settings(nullptr, false);
    Holder holder(QStringLiteral("filled lock file"));
    QVERIFY(holder.holds());
    holder.die();
    QVERIFY(QFileInfo(lockPath()).size() > 0);
    QElapsedTimer timer;
    timer.start();
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY2(timer.elapsed() < atOnceMilliseconds, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\nunits=1\n"));
    QVERIFY(!QFile::exists(lockPath()));
}

void TestSettingsLock::livingOwnerIsWaitedFor_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("lock file") << QStringLiteral("filled lock file");
    QTest::newRow("lock file that is still empty") << QStringLiteral("empty lock file");
    QTest::newRow("folder") << QStringLiteral("folder");
}

void TestSettingsLock::livingOwnerIsWaitedFor()
{
    QFETCH(QString, what);
    OtherApplication writer;
    QCOMPARE(writer.construct().exception, QString());
    Holder holder(what);
    QVERIFY(holder.holds());

    writer.begin({QStringLiteral("set"), QStringLiteral("units"), 1});
    QVERIFY(!writer.hasReplyWithin(lookMilliseconds));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\n"));
    holder.letGo();
    QCOMPARE(writer.finish().exception, QString());
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\nunits=1\n"));
}

void TestSettingsLock::lockFileThatALivingProcessHoldsIsNotTakenAway_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("filled") << QStringLiteral("filled lock file");
    QTest::newRow("still empty") << QStringLiteral("empty lock file");
}

void TestSettingsLock::lockFileThatALivingProcessHoldsIsNotTakenAway()
{
    QFETCH(QString, what);
    Holder holder(what);
    QVERIFY(holder.holds());
    const ino_t inode = inodeOf(lockPath());
    QVERIFY(inode != 0);
    {
        const SettingsFileLock lock(SettingsFile::path());
        QCOMPARE(inodeOf(lockPath()), inode);
    }
    QCOMPARE(inodeOf(lockPath()), inode);
    holder.letGo();
}

void TestSettingsLock::folderThatStaysLockedHoldsAWriteUpForASecondOnly()
{
    ZBSettingsMain settings(nullptr, false);
    Holder holder(QStringLiteral("folder"));
    QVERIFY(holder.holds());
    QElapsedTimer timer;
    timer.start();
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\nunits=1\n"));
}

void TestSettingsLock::folderIsFreeAgainAfterAWrite()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), 1);
    const int folder =
        open(QFile::encodeName(SettingsFile::folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QVERIFY(folder >= 0);
    QCOMPARE(flock(folder, LOCK_EX | LOCK_NB), 0);
    close(folder);
}

void TestSettingsLock::readerDoesNotWaitForAWriter()
{
    ZBSettingsMain settings(nullptr, false);
    Holder folderHolder(QStringLiteral("folder"));
    Holder fileHolder(QStringLiteral("filled lock file"));
    QVERIFY(folderHolder.holds() && fileHolder.holds());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QStringLiteral("de_de")));
    QVERIFY2(timer.elapsed() < 900, qPrintable(QString::number(timer.elapsed())));
}

void TestSettingsLock::folderIsMadeByTheFirstWrite()
{
    SettingsFile::removeAll();
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), 1);
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nunits=1\n"));
}

void TestSettingsLock::firstWriteHoldsTheLockToo()
{
    SettingsFile::removeAll();
    const SettingsFileLock lock(SettingsFile::path());
    const int folder =
        open(QFile::encodeName(SettingsFile::folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QVERIFY(folder >= 0);
    QCOMPARE(flock(folder, LOCK_EX | LOCK_NB), -1);
    close(folder);
}

// By the time in milliseconds, and the size, other processes see that their copy of the file is an old one.
void TestSettingsLock::everyWriteMovesTheModificationTimeOn()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), 0);
    qint64 previous = modificationTime();
    for (int i = 1; i <= 200; ++i) {
        settings.setSetting(QStringLiteral("units"), i % 10);
        const qint64 now = modificationTime();
        QVERIFY2(now > previous,
                 qPrintable(QStringLiteral("write %1: %2, then %3").arg(i).arg(previous).arg(now)));
        previous = now;
    }
}

void TestSettingsLock::fileFromTheNearFutureStaysLaterThanBefore()
{
    ZBSettingsMain settings(nullptr, false);
    const QDateTime ahead = QDateTime::currentDateTimeUtc().addSecs(30);
    QVERIFY(setModificationTime(ahead));
    const qint64 before = modificationTime();
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY(modificationTime() > before);
    QVERIFY(modificationTime() < before + 1000);
}

// The clock of a device that starts without a battery jumps by years.
void TestSettingsLock::fileFromTheFarFutureTakesTheTimeOfTheWrite()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(setModificationTime(QDateTime(QDate(2100, 1, 1), QTime(0, 0), Qt::UTC)));
    settings.setSetting(QStringLiteral("units"), 1);
    const qint64 distance = QDateTime::currentMSecsSinceEpoch() - modificationTime();
    QVERIFY2(qAbs(distance) < 60000, qPrintable(QString::number(distance)));
}

void TestSettingsLock::failedWriteLeavesTheModificationTime()
{
    OtherApplication writer;
    QCOMPARE(writer.construct().exception, QString());
    const qint64 before = modificationTime();
    writer.limitFileSize(0);
    QCOMPARE(writer.set(QStringLiteral("units"), 1).exception, QString());
    QCOMPARE(modificationTime(), before);
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\n"));
}

void TestSettingsLock::nothingIsLeftBesideTheFile()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), 1);
    QCOMPARE(QDir(SettingsFile::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("Brindlemark.ini")});
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--hold") == 0)
        return holdLock(argv[2], QFile::decodeName(argv[3]));
    TestSettingsLock test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_settingslock.moc"
