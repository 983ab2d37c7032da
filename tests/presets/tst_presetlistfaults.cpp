// What happens to the presets when processes are killed, write at the same time, hang, or find no room.
#include "diskcalls.h"
#include "filesizelimit.h"
#include "forkedworker.h"
#include "messagelog.h"
#include "openfilelimit.h"
#include "ordinaryuser.h"
#include "presethome.h"
#include "presetlist.h"
#include "smalldisk.h"

#include <QtTest/QtTest>

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString model = QStringLiteral("BrackenXL");
constexpr int notAllowed = 77;
constexpr int kept = 5; // presets of each of two processes

// Copying a process with all that the sanitizer has mapped takes long.
#ifdef __SANITIZE_ADDRESS__
constexpr int kills = 30;
constexpr int savesOfEach = 100;
#else
constexpr int kills = 200;
constexpr int savesOfEach = 1000;
#endif

void addPreset(PresetList *list, const QString &name)
{
    auto *preset = new Preset(model, name + QStringLiteral("_p"), Preset::User,
                              {QStringLiteral("Feed"), name, QStringLiteral("Stop"), QStringLiteral("2.5")},
                              name, QString(), list->applyLastPresetIndex());
    list->addPreset(preset);
    list->setCurrentPreset(preset);
    list->save(list->getPredefinedPresetNames());
}

void deletePreset(PresetList *list, const QString &name)
{
    const QString next = list->deletePreset(list->findPreset(name));
    list->setCurrentPreset(list->findPreset(next));
    list->save(list->getPredefinedPresetNames());
}

/// The folders and files of a home, which whoever shall be refused there has to own.
QStringList everythingIn(const PresetHome &home)
{
    QStringList paths{home.path(), home.path() + QStringLiteral("/.cups"), home.folder()};
    for (const QString &name : home.names())
        paths.append(home.folder() + name);
    return paths;
}

} // namespace

class TestPresetListFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyStepIsOnTheDiskBeforeTheNextOne();
    void killsLoseNothing();
    void twoProcessesLoseNothing();
    void aFullDiskIsLoggedOnceAndLosesNothing();
    void aFileThatDoesNotFitIsLoggedOnceAndLosesNothing();
    void aReadOnlyHomeIsLoggedOnceAndLosesNothing();
    void aHungProcessHidesNoPresetAndLosesNothing();
    void aFileSystemWithoutLocksIsReadAndNotWritten_data();
    void aFileSystemWithoutLocksIsReadAndNotWritten();
    void nothingIsRenamedWithoutTheLock();
    void tooManyOpenFilesAreNamed();
    void anUnreadableFileStaysInTheList();
    void whatAKilledProcessLeftIsNoObstacle();
    void aFolderInTheNewFilesPlaceIsNamed();

private:
    std::unique_ptr<PresetHome> m_home;
};

void TestPresetListFaults::init()
{
    m_home = std::make_unique<PresetHome>();
    QVERIFY(m_home->isValid());
}

void TestPresetListFaults::cleanup()
{
    m_home.reset();
}

void TestPresetListFaults::everyStepIsOnTheDiskBeforeTheNextOne()
{
    const auto stepsOf = [this](const std::function<void()> &action) {
        const DiskCalls::Record record;
        action();
        return record.steps(m_home->path());
    };
    const QStringList folders{QStringLiteral("make ~/.cups"), QStringLiteral("sync ~"),
                              QStringLiteral("make ~/.cups/Presets"), QStringLiteral("sync ~/.cups")};
    const QStringList preset{QStringLiteral("sync ~/.cups/Presets/presets.new"),
                             QStringLiteral("rename presets.new Shoes_p")};
    const QStringList order{QStringLiteral("sync ~/.cups/Presets/presets.new"),
                            QStringLiteral("rename presets.new BrackenXL.list")};
    const QStringList names{QStringLiteral("sync ~/.cups/Presets")};
    PresetList list(model, true);
    QCOMPARE(stepsOf([&list] { addPreset(&list, QStringLiteral("Shoes")); }),
             folders + preset + order + names);
    QCOMPARE(stepsOf([&list] { list.setCurrentPreset(nullptr); }), order + names);
    QCOMPARE(stepsOf([&list] {
                 list.deletePreset(list.findPreset(QStringLiteral("Shoes")));
                 list.save({});
             }),
             order + names);
}

void TestPresetListFaults::killsLoseNothing()
{
    std::mt19937 random(1);
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("kept"));
    int done = 0;
    int interrupted = 0;
    for (int round = 0; round < kills; ++round) {
        // Each number is told when its preset is on the disk and the one before it is gone.
        int told[2] = {};
        QCOMPARE(pipe2(told, O_CLOEXEC), 0);
        ForkedWorker writer([&told, done] {
            PresetList own(model, true);
            for (int i = done;; ++i) {
                addPreset(&own, QString::number(i));
                deletePreset(&own, QString::number(i - 1));
                if (write(told[1], &i, sizeof i) != ssize_t(sizeof i))
                    return 1;
            }
        });
        usleep(useconds_t(random() % 6000));
        writer.kill();
        close(told[1]);
        int number = 0;
        int last = done - 1;
        while (read(told[0], &number, sizeof number) == ssize_t(sizeof number))
            last = number;
        close(told[0]);

        MessageLog log;
        PresetList after(model, true);
        // What was told is there as it was; what came next is there as a whole or not at all.
        const QStringList before{QStringLiteral("kept"), QString::number(last)};
        const QStringList added = before + QStringList{QString::number(last + 1)};
        const QStringList deleted{QStringLiteral("kept"), QString::number(last + 1)};
        const QStringList names = after.getUserPresetNames();
        const bool isFirst = last < 0 && names == QStringList{QStringLiteral("kept")};
        QVERIFY2(names == before || names == added || names == deleted || isFirst,
                 qPrintable(names.join(QLatin1Char(' '))));
        for (const QString &name : names) {
            if (name != QLatin1String("kept"))
                QCOMPARE(after.findPreset(name)->options().value(1), name);
        }
        for (const QString &text : log.texts())
            QVERIFY2(text.endsWith(QLatin1String("_p is gone.")), qPrintable(text));
        interrupted += names == added || m_home->names().contains(QStringLiteral("presets.new")) ? 1 : 0;
        // The next round begins with one numbered preset again.
        for (const QString &name : names) {
            if (name != QLatin1String("kept"))
                deletePreset(&after, name);
        }
        done = last + 2;
        addPreset(&after, QString::number(done - 1));
        QCOMPARE(m_home->names().size(), 3);
    }
    qInfo("%d of %d kills fell into a save, %d presets were written", interrupted, kills, done);
    QVERIFY(interrupted > 0);
    list.save({});
    QCOMPARE(list.getUserPresetNames(), QStringList({QStringLiteral("kept"), QString::number(done - 1)}));
}

void TestPresetListFaults::twoProcessesLoseNothing()
{
    int start[2] = {};
    QCOMPARE(pipe2(start, O_CLOEXEC), 0);
    const auto work = [&start](const QString &prefix) {
        return [prefix, &start] {
            PresetList list(model, true);
            // Both begin when the test lets go of its end.
            close(start[1]);
            char ignored = 0;
            while (read(start[0], &ignored, 1) > 0) { }
            // The list stays short, since each save reads all of it.
            for (int i = 0; i < savesOfEach / 2; ++i) {
                // Of fifty, both give one the same name.
                addPreset(&list, i % 50 == 0 ? QStringLiteral("both") : prefix + QString::number(i));
                deletePreset(&list, prefix + QString::number(i - kept));
            }
            return 0;
        };
    };
    ForkedWorker one(work(QStringLiteral("one")));
    ForkedWorker two(work(QStringLiteral("two")));
    close(start[0]);
    close(start[1]);
    QCOMPARE(one.finish(), 0);
    QCOMPARE(two.finish(), 0);

    const MessageLog log;
    QStringList names = PresetList(model, true).getUserPresetNames();
    QCOMPARE(names.removeAll(QStringLiteral("both")), 2 * (savesOfEach / 2 / 50));
    for (const QString &prefix : {QStringLiteral("one"), QStringLiteral("two")}) {
        QStringList expected;
        for (int i = savesOfEach / 2 - kept; i < savesOfEach / 2; ++i)
            expected.append(prefix + QString::number(i));
        QCOMPARE(names.filter(prefix), expected);
    }
    QCOMPARE(names.size(), 2 * kept);
    QCOMPARE(log.texts(), QStringList());
}

void TestPresetListFaults::aFullDiskIsLoggedOnceAndLosesNothing()
{
    ForkedWorker process([this] {
        if (!SmallDisk::mountOn(m_home->path().toLocal8Bit()))
            return notAllowed;
        PresetList list(model, true);
        addPreset(&list, QStringLiteral("Shoes"));
        const QByteArray order = m_home->content("BrackenXL.list");
        if (!SmallDisk::fill(m_home->path(), 0))
            return 2;

        const MessageLog log;
        addPreset(&list, QStringLiteral("Boxes"));
        list.setCurrentPreset(list.findPreset(QStringLiteral("Shoes")));
        list.save({});
        if (m_home->names() != QStringList({QStringLiteral("BrackenXL.list"), QStringLiteral("Shoes_p")})
            || m_home->content("BrackenXL.list") != order)
            return 3;
        if (log.texts()
            != QStringList{
                QStringLiteral("PresetList: cannot write to %1: No space left on device. The presets "
                               "in the list are written as soon as that is possible again.")
                    .arg(m_home->folder())})
            return 4;
        if (!SmallDisk::clear(m_home->path()))
            return 6;
        list.save({});
        const QStringList both{QStringLiteral("Shoes"), QStringLiteral("Boxes")};
        return PresetList(model, true).getUserPresetNames() == both && log.texts().size() == 1 ? 0 : 5;
    });
    const int status = process.finish();
    if (status == notAllowed)
        QSKIP("no mount namespace here");
    QCOMPARE(status, 0);
}

void TestPresetListFaults::aFileThatDoesNotFitIsLoggedOnceAndLosesNothing()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    const QByteArray order = m_home->content("BrackenXL.list");
    const MessageLog log;
    {
        const FileSizeLimit full(50);
        addPreset(&list, QStringLiteral("Boxes"));
        deletePreset(&list, QStringLiteral("Boxes"));
        addPreset(&list, QStringLiteral("Hats"));
    }
    QCOMPARE(m_home->names(), QStringList({QStringLiteral("BrackenXL.list"), QStringLiteral("Shoes_p")}));
    QCOMPARE(m_home->content("BrackenXL.list"), order);
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().at(0).contains(QLatin1String(": File too large.")), qPrintable(log.texts().at(0)));

    list.save({});
    QCOMPARE(PresetList(model, true).getUserPresetNames(),
             QStringList({QStringLiteral("Shoes"), QStringLiteral("Hats")}));
}

void TestPresetListFaults::aReadOnlyHomeIsLoggedOnceAndLosesNothing()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    QVERIFY(m_home->write("Damaged_p", "damaged"));
    const QStringList before = m_home->names();
    const QByteArray order = m_home->content("BrackenXL.list");
    const OrdinaryUser user(everythingIn(*m_home));
    if (!user.isOrdinary())
        QSKIP("This process may not act as an ordinary user.");
    QVERIFY(QFile::setPermissions(m_home->folder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));

    MessageLog log;
    addPreset(&list, QStringLiteral("Boxes"));
    deletePreset(&list, QStringLiteral("Shoes"));
    list.save({});
    QVERIFY(QFile::setPermissions(m_home->folder(),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    const QStringList texts = log.texts();
    QCOMPARE(m_home->names(), before);
    QVERIFY(texts.filter(QStringLiteral("cannot write to")).size() == 1);
    QCOMPARE(m_home->content("BrackenXL.list"), order);

    list.save({});
    QVERIFY(m_home->names().contains(QStringLiteral("Boxes_p")));
    QVERIFY(!m_home->names().contains(QStringLiteral("Shoes_p")));
    QCOMPARE(list.getUserPresetNames(), QStringList{QStringLiteral("Boxes")});
}

void TestPresetListFaults::aHungProcessHidesNoPresetAndLosesNothing()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    const int holder =
        open(QFile::encodeName(m_home->folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QCOMPARE(flock(holder, LOCK_EX), 0);
    const MessageLog log;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(PresetList(model, true).getUserPresetNames(), QStringList{QStringLiteral("Shoes")});
    QVERIFY(timer.elapsed() < 3000);
    QCOMPARE(log.texts(), QStringList());
    addPreset(&list, QStringLiteral("Boxes"));
    list.setCurrentPreset(list.findPreset(QStringLiteral("Shoes")));
    list.save({});
    // One wait, and then brief ones only.
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(
        log.texts(),
        QStringList{QStringLiteral("PresetList: cannot write to %1: another process holds it. The presets "
                                   "in the list are written as soon as that is possible again.")
                        .arg(m_home->folder())});
    QCOMPARE(m_home->names().size(), 2);
    close(holder);
    list.save({});
    QCOMPARE(PresetList(model, true).getUserPresetNames().size(), 2);
}

void TestPresetListFaults::aFileSystemWithoutLocksIsReadAndNotWritten_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("no room for locks") << ENOLCK;
    QTest::newRow("not supported") << EOPNOTSUPP;
    QTest::newRow("no such call") << ENOSYS;
}

void TestPresetListFaults::aFileSystemWithoutLocksIsReadAndNotWritten()
{
    QFETCH(int, error);
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    const QStringList before = m_home->names();
    const MessageLog log;
    {
        const DiskCalls::Refusal refusal(DiskCalls::Call::Lock, error);
        PresetList read(model, true);
        QCOMPARE(read.getUserPresetNames(), QStringList{QStringLiteral("Shoes")});
        QCOMPARE(log.texts(), QStringList());
        addPreset(&list, QStringLiteral("Boxes"));
    }
    QCOMPARE(m_home->names(), before);
    QCOMPARE(log.texts(),
             QStringList{QStringLiteral("PresetList: cannot write to %1: %2. The presets in the list are "
                                        "written as soon as that is possible again.")
                             .arg(m_home->folder(), qt_error_string(error))});
    list.save({});
    QCOMPARE(PresetList(model, true).getUserPresetNames(),
             QStringList({QStringLiteral("Shoes"), QStringLiteral("Boxes")}));
}

void TestPresetListFaults::nothingIsRenamedWithoutTheLock()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    QVERIFY(m_home->write("Damaged_p", "damaged") && m_home->write("BrackenXL.list", "damaged"));
    const QStringList before = m_home->names();
    const MessageLog log;
    {
        const DiskCalls::Refusal refusal(DiskCalls::Call::Lock, ENOLCK);
        QCOMPARE(PresetList(model, true).getUserPresetNames(), QStringList{QStringLiteral("Shoes")});
    }
    QCOMPARE(m_home->names(), before);
    QCOMPARE(
        log.texts(),
        QStringList(
            {QStringLiteral("PresetList: %1Damaged_p is damaged or no preset.").arg(m_home->folder()),
             QStringLiteral("PresetList: %1BrackenXL.list is damaged or no preset.").arg(m_home->folder())}));
    QCOMPARE(PresetList(model, true).getUserPresetNames(), QStringList{QStringLiteral("Shoes")});
    QCOMPARE(m_home->names().filter(QStringLiteral(".damaged")).size(), 2);
}

void TestPresetListFaults::tooManyOpenFilesAreNamed()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    const MessageLog log;
    {
        // For the folder, and none to read it.
        const OpenFileLimit limit(1);
        addPreset(&list, QStringLiteral("Boxes"));
    }
    QCOMPARE(log.texts().size(), 1);
    QVERIFY2(log.texts().at(0).contains(QLatin1String(": Too many open files.")),
             qPrintable(log.texts().at(0)));
    list.save({});
    QCOMPARE(PresetList(model, true).getUserPresetNames(),
             QStringList({QStringLiteral("Shoes"), QStringLiteral("Boxes")}));
}

void TestPresetListFaults::anUnreadableFileStaysInTheList()
{
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    const OrdinaryUser user(everythingIn(*m_home));
    if (!user.isOrdinary())
        QSKIP("This process may not act as an ordinary user.");
    const QByteArray path = QFile::encodeName(m_home->folder() + QStringLiteral("Shoes_p"));
    QCOMPARE(chmod(path.constData(), 0), 0);
    const MessageLog log;
    list.save({});
    list.save({});
    QCOMPARE(list.getUserPresetNames(), QStringList{QStringLiteral("Shoes")});
    QCOMPARE(log.texts().filter(QStringLiteral("Shoes_p: Permission denied")).size(), 1);
}

void TestPresetListFaults::whatAKilledProcessLeftIsNoObstacle()
{
    QVERIFY(m_home->write("presets.new", "half of somethi"));
    const MessageLog log;
    PresetList list(model, true);
    QCOMPARE(list.getUserPresetNames(), QStringList());
    addPreset(&list, QStringLiteral("Shoes"));
    QCOMPARE(m_home->names(), QStringList({QStringLiteral("BrackenXL.list"), QStringLiteral("Shoes_p")}));
    QCOMPARE(log.texts(), QStringList());
}

void TestPresetListFaults::aFolderInTheNewFilesPlaceIsNamed()
{
    const QString folder = m_home->folder() + QStringLiteral("presets.new");
    QVERIFY(QDir().mkpath(folder));
    const MessageLog log;
    PresetList list(model, true);
    addPreset(&list, QStringLiteral("Shoes"));
    addPreset(&list, QStringLiteral("Boxes"));
    QCOMPARE(m_home->names(), QStringList{QStringLiteral("presets.new")});
    QCOMPARE(
        log.texts(),
        QStringList{QStringLiteral("PresetList: cannot write to %1: File exists. The presets in the list are "
                                   "written as soon as that is possible again.")
                        .arg(m_home->folder())});
    QVERIFY(QDir().rmdir(folder));
    list.save({});
    QCOMPARE(PresetList(model, true).getUserPresetNames(),
             QStringList({QStringLiteral("Shoes"), QStringLiteral("Boxes")}));
}

QTEST_GUILESS_MAIN(TestPresetListFaults)
#include "tst_presetlistfaults.moc"
