// The folder of the compositor's environment file is missing, its disk is full, or may not be written.
//
// The folders are small disks in memory that a process of its own mounts, in a mount namespace that goes with
// it. Where that is not allowed the test is skipped.
#include "childprocess.h"
#include "filebytes.h"
#include "keyboardenvironment.h"
#include "messagelog.h"
#include "scriptedlocale.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <cstdio>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr int notAllowed = 77;
constexpr int pageSize = 4096;
constexpr int german = 3;

const QByteArray germanLines("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
const QStringList bothFailures{QStringLiteral("failed to open wayland file"),
                               QStringLiteral("failed to reopen wayland file")};

/// Mounts are this process's alone from now on. The user stays who it is, so that the bus still knows it.
bool enterMountNamespace()
{
    const QByteArray user = QByteArray::number(getuid());
    const QByteArray group = QByteArray::number(getgid());
    if (user == "0")
        return unshare(CLONE_NEWNS) == 0;
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0
        && FileBytes::write(QStringLiteral("/proc/self/setgroups"), "deny")
        && FileBytes::write(QStringLiteral("/proc/self/uid_map"), user + ' ' + user + " 1")
        && FileBytes::write(QStringLiteral("/proc/self/gid_map"), group + ' ' + group + " 1");
}

bool mountDisk(const QByteArray &folder)
{
    KeyboardEnvironment::folder();
    return enterMountNamespace() && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("tmpfs", folder.constData(), "tmpfs", 0, "size=64k,mode=0755") == 0;
}

/// Fills the disk until \a pages pages are free.
bool fillDisk(int pages)
{
    struct statvfs disk = {};
    if (statvfs("/etc/corvanta", &disk) != 0)
        return false;
    const qint64 fill = qint64(disk.f_bfree) * qint64(disk.f_frsize) - qint64(pages) * pageSize;
    return fill >= 0 && FileBytes::write(QStringLiteral("/etc/corvanta/fill"), QByteArray(int(fill), 'x'));
}

/// What choosing a layout logs.
QStringList messagesOfAChoice()
{
    ScriptedLocale::script().layouts = {
        {german, {QString(), QStringLiteral("de"), QStringLiteral("nodeadkeys"), QString()}}};
    ZBSettingsMain settings(nullptr, false);
    const MessageLog log;
    settings.setKeyboardLanguage(german);
    return log.texts();
}

QString complaintOfMissingFolder()
{
    if (messagesOfAChoice() != bothFailures)
        return QStringLiteral("not both failures were logged");
    if (!QDir(QStringLiteral("/etc"))
             .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
             .isEmpty())
        return QStringLiteral("something was made");
    return {};
}

QString complaintOfReadOnlyDisk()
{
    if (!KeyboardEnvironment::write("A=1\n")
        || mount(nullptr, "/etc/corvanta", nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        return QStringLiteral("the disk could not be made read-only");
    if (messagesOfAChoice() != bothFailures)
        return QStringLiteral("not both failures were logged");
    return KeyboardEnvironment::content() == "A=1\n" ? QString() : QStringLiteral("the file has changed");
}

/// \a content is in the file on a disk with \a freePages pages; \a expected is there after the choice.
QString complaintOfFullDisk(const QByteArray &content, int freePages, const QByteArray &expected)
{
    if ((!content.isNull() && !KeyboardEnvironment::write(content)) || !fillDisk(freePages))
        return QStringLiteral("the disk could not be filled");
    if (!messagesOfAChoice().isEmpty())
        return QStringLiteral("something was logged");
    if (KeyboardEnvironment::content() != expected)
        return QStringLiteral("on the full disk the file has %1 bytes")
            .arg(KeyboardEnvironment::content().size());

    // With room again the next choice is whole.
    QFile::remove(QStringLiteral("/etc/corvanta/fill"));
    messagesOfAChoice();
    if (!KeyboardEnvironment::content().endsWith(germanLines))
        return QStringLiteral("with room again the file has %1 bytes")
            .arg(KeyboardEnvironment::content().size());
    return {};
}

QByteArray folderOf(const QByteArray &scene)
{
    return scene == "missing folder" ? "/etc" : "/etc/corvanta";
}

QString complaintOf(const QByteArray &scene)
{
    const QByteArray page = QByteArray("A=1\n").repeated(pageSize / 4);
    if (scene == "missing folder")
        return complaintOfMissingFolder();
    if (scene == "read-only disk")
        return complaintOfReadOnlyDisk();
    if (scene == "full disk, file of one page")
        return complaintOfFullDisk("A=1\n", 0, "A=1\n" + germanLines);
    if (scene == "full disk, file that outgrows its page")
        return complaintOfFullDisk(page, 0, page);
    if (scene == "full disk, no file yet")
        return complaintOfFullDisk({}, 0, "");
    if (scene == "room for one page more")
        return complaintOfFullDisk(page, 1, page + germanLines);
    return QStringLiteral("no such scene");
}

} // namespace

class TestKeyboardFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileIsAsGoodAsTheDiskAllows_data();
    void fileIsAsGoodAsTheDiskAllows();
};

void TestKeyboardFolder::fileIsAsGoodAsTheDiskAllows_data()
{
    QTest::addColumn<QString>("scene");
    for (const char *const scene :
         {"missing folder", "read-only disk", "full disk, file of one page",
          "full disk, file that outgrows its page", "full disk, no file yet", "room for one page more"})
        QTest::newRow(scene) << QString::fromLatin1(scene);
}

void TestKeyboardFolder::fileIsAsGoodAsTheDiskAllows()
{
    QFETCH(QString, scene);
    ChildProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--scene"), scene});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    if (process.exitCode() == notAllowed)
        QSKIP("no mount namespace here");
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), QString());
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char **argv)
{
    // Before anything makes a thread, since a user namespace is for a process of one thread.
    const bool isScene = argc == 3 && qstrcmp(argv[1], "--scene") == 0;
    if (isScene && !mountDisk(folderOf(argv[2])))
        return notAllowed;
    const QCoreApplication application(argc, argv);
    if (!isScene) {
        TestKeyboardFolder test;
        return QTest::qExec(&test, argc, argv);
    }
    const QString complaint = complaintOf(argv[2]);
    std::fputs(qPrintable(complaint), stdout);
    return complaint.isEmpty() ? 0 : 1;
}
#include "tst_keyboardfolder.moc"
