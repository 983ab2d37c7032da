// The folder's lock goes to processes in the order of their coming, and a hung one costs a wait.
#include "folderfiles.h"
#include "folderlock.h"
#include "forkedworker.h"
#include "optionsfolder.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <optional>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int longPatience = 20000;

/// The folder, open and locked as one process has it.
class Locked
{
public:
    Locked(const QString &path, int patience)
        : m_folder(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
        , m_error(FolderLock::take(m_folder, patience))
    {
    }
    ~Locked() { close(m_folder); }

    int error() const { return m_error; }

private:
    Q_DISABLE_COPY(Locked)
    const int m_folder;
    const int m_error;
};

/// A process that has the lock until the object ends. Not this process: the ones that it starts afterwards
/// would have the lock with it.
class Holder
{
public:
    explicit Holder(const QString &path)
        : m_process([this, path] {
            const Locked lock(path, longPatience);
            if (lock.error() == 0 && write(m_word[1], "", 1) == 1)
                pause();
        })
    {
        // Or reading would not end when the process failed.
        m_word.close(1);
        char word = 0;
        if (read(m_word[0], &word, 1) != 1)
            qFatal("no lock to begin with");
    }

private:
    Q_DISABLE_COPY(Holder)
    struct Pipe
    {
        Pipe()
        {
            if (pipe2(ends, O_CLOEXEC) != 0)
                qFatal("no pipe");
        }
        ~Pipe()
        {
            close(0);
            close(1);
        }
        int operator[](int end) const { return ends[end]; }
        void close(int end)
        {
            if (ends[end] >= 0)
                ::close(ends[end]);
            ends[end] = -1;
        }
        int ends[2] = {-1, -1};
    };
    Pipe m_word;
    const ForkedWorker m_process;
};

/// What another program may do to the folder, or a process that is stopped while it waits: a lock on \a count
/// bytes from \a begin on, all when that is 0. As another process's, since it belongs to this opening.
class ForeignLock
{
public:
    ForeignLock(const QString &path, off_t begin, off_t count)
        : m_folder(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        struct flock lock = {};
        lock.l_type = F_RDLCK;
        lock.l_start = begin;
        lock.l_len = count;
        if (fcntl(m_folder, F_OFD_SETLK, &lock) != 0)
            qFatal("no foreign lock");
    }
    ~ForeignLock() { close(m_folder); }

private:
    Q_DISABLE_COPY(ForeignLock)
    const int m_folder;
};

/// Whether some process waits with \a number.
bool isWaiting(const QString &path, int number)
{
    const int folder = open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    struct flock found = {};
    found.l_type = F_WRLCK;
    found.l_start = number;
    found.l_len = 1;
    const int result = fcntl(folder, F_OFD_GETLK, &found);
    close(folder);
    return result == 0 && found.l_type != F_UNLCK;
}

} // namespace

class TestFolderLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processesGetItInTheOrderOfTheirComing();
    void busyProcessDoesNotKeepTheOthersOut();
    void hungHolderCostsThePatience();
    void hungWaiterCostsLittleEachTime();
    void hungWaiterCostsHalfOfAShortPatience();
    void foreignLockEndsTheOrderAndNothingElse_data();
    void foreignLockEndsTheOrderAndNothingElse();
    void foreignLockAmongWaitersHoldsNobodyUp();
    void endedLockIsNotKeptByAForkedChild_data();
    void endedLockIsNotKeptByAForkedChild();
    void killedHolderAndWaiterCostNothing();
    void patienceIsShortAfterAWaitInVain();

private:
    const QTemporaryDir m_folder;
};

void TestFolderLock::processesGetItInTheOrderOfTheirComing()
{
    const QString path = m_folder.path();
    int pipe[2] = {-1, -1};
    QCOMPARE(pipe2(pipe, O_CLOEXEC), 0);
    std::vector<std::unique_ptr<ForkedWorker>> workers;
    {
        const Holder holder(path);
        for (char number = 0; number < 5; ++number) {
            workers.push_back(std::make_unique<ForkedWorker>([path, number, &pipe] {
                const Locked lock(path, longPatience);
                if (lock.error() != 0 || write(pipe[1], &number, 1) != 1)
                    _exit(1);
            }));
            QTRY_VERIFY(isWaiting(path, number));
        }
    }
    close(pipe[1]);
    QByteArray order(5, ' ');
    for (int i = 0; i < order.size(); ++i)
        QCOMPARE(read(pipe[0], order.data() + i, 1), ssize_t(1));
    close(pipe[0]);
    QCOMPARE(order, QByteArray("\0\1\2\3\4", 5));
}

void TestFolderLock::busyProcessDoesNotKeepTheOthersOut()
{
    const QString path = m_folder.path();
    void *const memory =
        mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    QVERIFY(memory != MAP_FAILED);
    auto *const turns = new (memory) std::atomic<int>(0);
    QVector<int> overtakings;
    {
        const ForkedWorker busy([path, turns] {
            for (;;) {
                const Locked lock(path, longPatience);
                if (lock.error() != 0)
                    _exit(1);
                ++*turns;
                usleep(300);
            }
        });
        QTRY_VERIFY(*turns > 0);
        for (int i = 0; i < 101; ++i) {
            // Or this process would be the busy one.
            usleep(500);
            const int before = *turns;
            const Locked lock(path, longPatience);
            QCOMPARE(lock.error(), 0);
            overtakings.append(*turns - before);
        }
    }
    munmap(memory, sizeof(std::atomic<int>));
    // Not each: this process may be put to sleep before it takes its place.
    std::sort(overtakings.begin(), overtakings.end());
    QVERIFY2(overtakings.at(80) <= 2, qPrintable(QString::number(overtakings.at(80))));
}

void TestFolderLock::hungHolderCostsThePatience()
{
    const Locked hung(m_folder.path(), longPatience);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Locked(m_folder.path(), 200).error(), EWOULDBLOCK);
    QVERIFY(timer.elapsed() >= 200);
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(FolderLock::reasonOf(EWOULDBLOCK), QStringLiteral("another process holds it"));
}

void TestFolderLock::hungWaiterCostsLittleEachTime()
{
    const QString path = m_folder.path();
    auto holder = std::make_unique<Holder>(path);
    ForkedWorker waiter([path] { const Locked lock(path, longPatience); });
    QTRY_VERIFY(isWaiting(path, 0));
    waiter.stop();
    holder.reset();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 5; ++i)
        QCOMPARE(Locked(path, 1500).error(), 0);
    // It has its turn first, if it wakes up.
    QVERIFY(timer.elapsed() >= 5 * 50);
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
}

void TestFolderLock::hungWaiterCostsHalfOfAShortPatience()
{
    const ForeignLock waiter(m_folder.path(), 0, 1);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Locked(m_folder.path(), 20).error(), 0);
    QVERIFY(timer.elapsed() >= 10);
    QCOMPARE(Locked(m_folder.path(), 0).error(), 0);
}

void TestFolderLock::foreignLockEndsTheOrderAndNothingElse_data()
{
    constexpr off_t last = std::numeric_limits<off_t>::max();
    QTest::addColumn<qint64>("begin");
    QTest::addColumn<qint64>("count");
    QTest::newRow("everything") << qint64(0) << qint64(0);
    QTest::newRow("two bytes") << qint64(0) << qint64(2);
    QTest::newRow("later bytes") << qint64(5) << qint64(7);
    QTest::newRow("the last byte") << qint64(last) << qint64(1);
}

void TestFolderLock::foreignLockEndsTheOrderAndNothingElse()
{
    QFETCH(qint64, begin);
    QFETCH(qint64, count);
    const ForeignLock foreign(m_folder.path(), begin, count);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Locked(m_folder.path(), 1500).error(), 0);
    QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
    const Holder holder(m_folder.path());
    timer.start();
    QCOMPARE(Locked(m_folder.path(), 100).error(), EWOULDBLOCK);
    QVERIFY(timer.elapsed() >= 100);
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
}

void TestFolderLock::foreignLockAmongWaitersHoldsNobodyUp()
{
    const QString path = m_folder.path();
    auto holder = std::make_unique<Holder>(path);
    ForkedWorker first([path] { const Locked lock(path, longPatience); });
    QTRY_VERIFY(isWaiting(path, 0));
    const ForeignLock foreign(path, 0, 0);
    first.stop();
    holder.reset();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Locked(path, 1500).error(), 0);
    QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
}

void TestFolderLock::endedLockIsNotKeptByAForkedChild_data()
{
    QTest::addColumn<bool>("isOfPresets");
    QTest::newRow("options") << false;
    QTest::newRow("presets") << true;
}

void TestFolderLock::endedLockIsNotKeptByAForkedChild()
{
    QFETCH(bool, isOfPresets);
    const QString path = m_folder.path();
    std::optional<OptionsFolder> options;
    std::optional<FolderFiles> presets;
    if (isOfPresets)
        presets.emplace(path, FolderFiles::Opening::Locked, longPatience);
    else
        options.emplace(QFile::encodeName(path), longPatience);
    const ForkedWorker child([] { pause(); });
    QCOMPARE(Locked(path, 0).error(), EWOULDBLOCK);
    presets.reset();
    options.reset();
    QCOMPARE(Locked(path, 0).error(), 0);
}

void TestFolderLock::killedHolderAndWaiterCostNothing()
{
    const QString path = m_folder.path();
    {
        const Holder holder(path);
        const ForkedWorker waiter([path] { const Locked lock(path, longPatience); });
        QTRY_VERIFY(isWaiting(path, 0));
    }
    QVERIFY(!isWaiting(path, 0));
    QCOMPARE(Locked(path, 0).error(), 0);
}

void TestFolderLock::patienceIsShortAfterAWaitInVain()
{
    LockPatience patience;
    QCOMPARE(patience.milliseconds(), 1500);
    patience.noteOutcome(EWOULDBLOCK);
    QCOMPARE(patience.milliseconds(), 20);
    patience.noteOutcome(EWOULDBLOCK);
    QCOMPARE(patience.milliseconds(), 20);
    patience.noteOutcome(0);
    QCOMPARE(patience.milliseconds(), 1500);
}

QTEST_APPLESS_MAIN(TestFolderLock)
#include "tst_folderlock.moc"
