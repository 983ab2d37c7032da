// The file that the options are in: what stays as it was, what is made, and what is not even touched.
#include "cupssupport.h"
#include "diskcalls.h"
#include "filebytes.h"
#include "messagelog.h"
#include "openfilelimit.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct stat stateOf(const QString &path)
{
    struct stat state = {};
    if (lstat(QFile::encodeName(path).constData(), &state) != 0)
        state.st_mode = 0;
    return state;
}

mode_t modeOf(const QString &path)
{
    return stateOf(path).st_mode & 07777;
}

QStringList whatTheDescriptorsAre()
{
    QStringList result;
    const QStringList names =
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System);
    for (const QString &name : names)
        result.append(name + QFile::symLinkTarget(QStringLiteral("/proc/self/fd/") + name));
    return result.filter(QStringLiteral("/zboptions-"));
}

/// The umask while it lives.
class Umask
{
public:
    explicit Umask(mode_t mask)
        : m_before(umask(mask))
    {
    }
    ~Umask() { umask(m_before); }

private:
    Q_DISABLE_COPY(Umask)
    const mode_t m_before;
};

} // namespace

class TestOptionsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingElseStaysByteForByte();
    void folderAndFileAreMadeWithTheirModes();
    void modeAndOwnerStay();
    void ownerOutOfReachDoesNotStopAChange_data();
    void ownerOutOfReachDoesNotStopAChange();
    void sameValueWritesNothing();
    void foreignFormOfTheSameValueIsPutRight();
    void linkIsFollowed();
    void linkToAFileThatIsNotThereYetIsFollowed();
    void leftoverOfAKilledProcessIsReplaced();
    void halfWrittenFileIsReadAgain();
    void unfinishedOldFileIsTakenAsItIs();
    void fileWithoutLineEndCostsOneWait_data();
    void fileWithoutLineEndCostsOneWait();
    void folderInTheNewFilesPlaceIsNamed_data();
    void folderInTheNewFilesPlaceIsNamed();
    void fileThatIsNoneIsLeftAlone_data();
    void fileThatIsNoneIsLeftAlone();
    void passingFailureIsNotKept();
    void fileSystemWithoutLocksIsReadAndNotWritten();
    void heldFolderCostsOneWait();
    void noDescriptorStaysOpen();
};

void TestOptionsFile::everythingElseStaysByteForByte()
{
    const OptionsHome home;
    const QByteArray before(
        "# my printers\n\n  Dest Ghost Feed=Custom.9  \nDest BrackenXL/draft Feed=Custom.8\n");
    const QByteArray after("Default Other note='a b' # c\r\nDest BrackenXL Feed=Custom.7\n\xff\xfe\nno end");
    QVERIFY(
        home.write(before + "dest  brackenXL\tcopies=2 Feed=Custom.3   note=\"a \\\"b\\\"\" #x\n" + after));
    CupsSupport options;
    options.setFeed(-4);
    options.setMirror(true);
    QCOMPARE(home.text(),
             before + "dest  brackenXL MirrorPrint=True\tcopies=2 Feed=Custom.-4   note=\"a \\\"b\\\"\" #x\n"
                 + after);
    QCOMPARE(home.files(), QStringList{QStringLiteral("lpoptions")});
}

void TestOptionsFile::folderAndFileAreMadeWithTheirModes()
{
    const OptionsHome home;
    const Umask mask(0022);
    CupsSupport options;
    options.setCut(1);
    QCOMPARE(modeOf(home.cupsFolder()), mode_t(0700));
    QCOMPARE(modeOf(home.userFile()), mode_t(0644));
    QCOMPARE(home.files(), QStringList{QStringLiteral("lpoptions")});
}

void TestOptionsFile::modeAndOwnerStay()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL CutMedia=0\n"));
    const QByteArray path = QFile::encodeName(home.userFile());
    const bool isRoot = geteuid() == 0;
    QVERIFY(!isRoot || chown(path.constData(), 1234, 2345) == 0);
    QCOMPARE(chmod(path.constData(), 0660), 0);
    CupsSupport options;
    options.setCut(1);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL CutMedia=1\n"));
    QCOMPARE(modeOf(home.userFile()), mode_t(0660));
    QCOMPARE(stateOf(home.userFile()).st_uid, isRoot ? uid_t(1234) : geteuid());
    QVERIFY(!isRoot || stateOf(home.userFile()).st_gid == 2345);
}

void TestOptionsFile::ownerOutOfReachDoesNotStopAChange_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QByteArray>("after");
    const QByteArray changed("Dest BrackenXL CutMedia=1\n");
    QTest::newRow("not allowed") << EPERM << changed;
    QTest::newRow("not in the user namespace") << EINVAL << changed;
    QTest::newRow("no owners") << ENOSYS << changed;
    QTest::newRow("bad disk") << EIO << QByteArray("Dest BrackenXL CutMedia=0\n");
}

void TestOptionsFile::ownerOutOfReachDoesNotStopAChange()
{
    QFETCH(int, error);
    QFETCH(QByteArray, after);
    if (geteuid() != 0)
        QSKIP("only root can make a file of another owner");
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL CutMedia=0\n"));
    QCOMPARE(chown(QFile::encodeName(home.userFile()).constData(), 1234, 2345), 0);
    const DiskCalls::Refusal refusal(DiskCalls::Call::ChangeOwner, error);
    const MessageLog log;
    CupsSupport options;
    options.setCut(1);
    QCOMPARE(home.text(), after);
    QCOMPARE(log.texts().size(), error == EIO ? 1 : 0);
}

void TestOptionsFile::sameValueWritesNothing()
{
    const OptionsHome home;
    CupsSupport options;
    options.setStop(1.5);
    options.setMirror(false);
    const struct stat before = stateOf(home.userFile());
    options.setStop(1.5);
    options.setMirror(false);
    options.setOrientation(CupsOrientationNone);
    CupsSupport().setStop(1.5);
    const struct stat after = stateOf(home.userFile());
    QCOMPARE(after.st_ino, before.st_ino);
    QVERIFY(after.st_ctim.tv_nsec == before.st_ctim.tv_nsec && after.st_ctim.tv_sec == before.st_ctim.tv_sec);

    const OptionsHome emptyHome;
    CupsSupport().setOrientation(CupsOrientationNone);
    QVERIFY(!QFileInfo::exists(emptyHome.cupsFolder()));
}

void TestOptionsFile::foreignFormOfTheSameValueIsPutRight()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL Feed=12\n"));
    CupsSupport options;
    QCOMPARE(options.getFeed(), 12);
    options.setFeed(12);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.12\n"));
}

void TestOptionsFile::linkIsFollowed()
{
    const OptionsHome home;
    const QString real = home.path() + QStringLiteral("/elsewhere/options");
    QVERIFY(QDir().mkpath(home.cupsFolder()) && QDir().mkpath(home.path() + QStringLiteral("/elsewhere")));
    QVERIFY(FileBytes::write(real, "Dest BrackenXL a=1\n"));
    QVERIFY(QFile::link(QStringLiteral("middle"), home.userFile()));
    QVERIFY(
        QFile::link(QStringLiteral("../elsewhere/options"), home.cupsFolder() + QStringLiteral("/middle")));
    CupsSupport options;
    options.setFeed(3);
    QCOMPARE(options.getFeed(), 3);
    QVERIFY(QFileInfo(home.userFile()).isSymLink());
    QCOMPARE(FileBytes::read(real), QByteArray("Dest BrackenXL Feed=Custom.3 a=1\n"));
}

void TestOptionsFile::linkToAFileThatIsNotThereYetIsFollowed()
{
    const OptionsHome home;
    const QString real = home.path() + QStringLiteral("/elsewhere");
    QVERIFY(QDir().mkpath(home.cupsFolder()));
    QVERIFY(QFile::link(real, home.userFile()));
    CupsSupport options;
    options.setFeed(3);
    QVERIFY(QFileInfo(home.userFile()).isSymLink());
    QCOMPARE(FileBytes::read(real), QByteArray("Dest BrackenXL Feed=Custom.3\n"));
}

void TestOptionsFile::leftoverOfAKilledProcessIsReplaced()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL a=1\n"));
    const QString victim = home.path() + QStringLiteral("/victim");
    QVERIFY(FileBytes::write(victim, "stays"));
    QVERIFY(QFile::link(victim, home.userFile() + QStringLiteral(".new")));
    CupsSupport options;
    options.setFeed(3);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.3 a=1\n"));
    QCOMPARE(FileBytes::read(victim), QByteArray("stays"));
    QCOMPARE(home.files(), QStringList{QStringLiteral("lpoptions")});
}

void TestOptionsFile::halfWrittenFileIsReadAgain()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL Feed=Custom.3\n"));
    CupsSupport options;
    QCOMPARE(options.getFeed(), 3);
    // What another program does: empty the file, write a piece, write the rest.
    QFile file(home.userFile());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered));
    QScopedPointer<QThread> writer(QThread::create([&file] {
        QThread::msleep(15);
        file.write("Dest Other a=1\nDest BrackenXL Fe");
        QThread::msleep(15);
        file.write("ed=Custom.4\n");
        file.close();
    }));
    writer->start();
    const int feed = options.getFeed();
    options.setMirror(true);
    QVERIFY(writer->wait());
    QCOMPARE(feed, 4);
    QCOMPARE(home.text(), QByteArray("Dest Other a=1\nDest BrackenXL MirrorPrint=True Feed=Custom.4\n"));
}

void TestOptionsFile::unfinishedOldFileIsTakenAsItIs()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL Feed=Custom.3"));
    const timespec longAgo[] = {{1000000000, 0}, {1000000000, 0}};
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(home.userFile()).constData(), longAgo, 0), 0);
    QElapsedTimer timer;
    timer.start();
    CupsSupport options;
    QCOMPARE(options.getFeed(), 3);
    QVERIFY(timer.elapsed() < 50);
    options.setFeed(4);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.4\n"));
}

void TestOptionsFile::fileWithoutLineEndCostsOneWait_data()
{
    QTest::addColumn<int>("age");
    QTest::newRow("just written") << 0;
    QTest::newRow("written tomorrow") << -86400;
}

void TestOptionsFile::fileWithoutLineEndCostsOneWait()
{
    QFETCH(int, age);
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL a=1\nDest Other b=2"));
    timespec times[] = {{0, UTIME_OMIT}, {}};
    clock_gettime(CLOCK_REALTIME, &times[1]);
    times[1].tv_sec -= age;
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(home.userFile()).constData(), times, 0), 0);
    // How long the disk takes is not what this is about.
    DiskCalls::setSyncing(false);
    CupsSupport options;
    QElapsedTimer timer;
    timer.start();
    options.setFeed(1);
    const qint64 first = timer.restart();
    for (int value = 2; value < 10; ++value)
        options.setFeed(value);
    const qint64 others = timer.elapsed();
    DiskCalls::setSyncing(true);
    QVERIFY2(first < 1000, qPrintable(QString::number(first)));
    QVERIFY2(others < 100, qPrintable(QString::number(others)));
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.9 a=1\nDest Other b=2"));
}

void TestOptionsFile::folderInTheNewFilesPlaceIsNamed_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("with a file") << QByteArray("Dest BrackenXL a=1\n");
    QTest::newRow("without a file") << QByteArray();
}

void TestOptionsFile::folderInTheNewFilesPlaceIsNamed()
{
    QFETCH(QByteArray, before);
    const OptionsHome home;
    const QString folder = home.userFile() + QStringLiteral(".new");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(before.isNull() || home.write(before));
    CupsSupport options;
    const MessageLog log;
    options.setFeed(3);
    options.setMirror(true);
    QCOMPARE(
        log.texts(),
        QStringList{
            QStringLiteral("printer options cannot be written to %1: File exists").arg(home.userFile())});
    QCOMPARE(home.text(), before);
    QVERIFY(QDir().rmdir(folder));
    options.setFeed(4);
    QCOMPARE(options.getFeed(), 4);
    QCOMPARE(home.files(), QStringList{QStringLiteral("lpoptions")});
}

void TestOptionsFile::fileThatIsNoneIsLeftAlone_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *const kind :
         {"folder", "pipe", "huge", "link to itself", "folder is a file", "line too long"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestOptionsFile::fileThatIsNoneIsLeftAlone()
{
    QFETCH(QString, kind);
    const OptionsHome home;
    const QByteArray path = QFile::encodeName(home.userFile());
    if (kind == QLatin1String("folder is a file"))
        QVERIFY(FileBytes::write(home.cupsFolder(), "x"));
    else
        QVERIFY(QDir().mkpath(home.cupsFolder()));
    if (kind == QLatin1String("folder"))
        QVERIFY(QDir().mkpath(home.userFile()));
    else if (kind == QLatin1String("pipe"))
        QCOMPARE(mkfifo(path.constData(), 0600), 0);
    else if (kind == QLatin1String("huge"))
        QVERIFY(home.write(QByteArray(1024 * 1024, '#') + '\n'));
    else if (kind == QLatin1String("link to itself"))
        QVERIFY(QFile::link(home.userFile(), home.userFile()));
    else if (kind == QLatin1String("line too long"))
        QVERIFY(home.write("Dest BrackenXL a=" + QByteArray(9000, 'x') + '\n'));
    const struct stat before = stateOf(home.userFile());

    CupsSupport options;
    const MessageLog log;
    QCOMPARE(options.getFeed(), 0);
    options.setFeed(3);
    options.setFeed(4);
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().constFirst().startsWith(QStringLiteral("printer options cannot be written to ")
                                                 + home.userFile() + QStringLiteral(": ")),
             qPrintable(log.texts().constFirst()));
    QCOMPARE(stateOf(home.userFile()).st_ino, before.st_ino);
    QCOMPARE(stateOf(home.userFile()).st_size, before.st_size);
}

void TestOptionsFile::passingFailureIsNotKept()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL Feed=Custom.3\n"));
    // Long enough for the file's times to tell it from the next one.
    QTest::qSleep(100);
    const CupsSupport options;
    {
        const OpenFileLimit limit(0);
        QCOMPARE(options.getFeed(), 0);
    }
    QCOMPARE(options.getFeed(), 3);
}

void TestOptionsFile::fileSystemWithoutLocksIsReadAndNotWritten()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL Feed=Custom.3\n"));
    const DiskCalls::Refusal refusal(DiskCalls::Call::Lock, ENOLCK);
    const MessageLog log;
    CupsSupport options;
    QCOMPARE(options.getFeed(), 3);
    options.setFeed(4);
    options.setFeed(5);
    QCOMPARE(options.getFeed(), 3);
    QCOMPARE(log.texts(),
             QStringList{QStringLiteral("printer options cannot be written to %1: No locks available")
                             .arg(home.userFile())});
}

void TestOptionsFile::heldFolderCostsOneWait()
{
    const OptionsHome home;
    QVERIFY(home.write("Dest BrackenXL a=1\n"));
    const int folder =
        open(QFile::encodeName(home.cupsFolder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QCOMPARE(flock(folder, LOCK_EX), 0);
    CupsSupport options;
    const MessageLog log;
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i < 18; ++i)
        options.setFeed(i);
    QVERIFY(timer.elapsed() >= 1500);
    QVERIFY(timer.elapsed() < 3000);
    QCOMPARE(log.texts().size(), 1);
    QVERIFY(log.texts().constFirst().endsWith(QStringLiteral(": another process holds it")));
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL a=1\n"));
    close(folder);
    options.setFeed(3);
    QCOMPARE(home.text(), QByteArray("Dest BrackenXL Feed=Custom.3 a=1\n"));
}

void TestOptionsFile::noDescriptorStaysOpen()
{
    const OptionsHome home;
    CupsSupport options;
    options.setFeed(3);
    QCOMPARE(options.getFeed(), 3);
    QCOMPARE(whatTheDescriptorsAre(), QStringList());
}

QTEST_APPLESS_MAIN(TestOptionsFile)
#include "tst_optionsfile.moc"
