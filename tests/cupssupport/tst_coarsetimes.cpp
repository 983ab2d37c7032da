// Another program writes in place while file times go in coarse ticks, as they do on most kernels: no getter
// is left with an old value, and no setter brings one back.
#include "cupssupport.h"
#include "filebytes.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr long usualTick = 10000000;
constexpr long wholeSecond = 1000000000;

long nanosecondsOfTick = usualTick;
/// How much older than it is a file seems to be.
time_t secondsAdded = 0;

/// What happens once, after the next read of a file.
std::function<void()> afterRead;

void makeCoarse(timespec *time)
{
    time->tv_nsec -= time->tv_nsec % nanosecondsOfTick;
    time->tv_sec -= secondsAdded;
}

int withCoarseTimes(int result, struct stat *file)
{
    if (result == 0) {
        makeCoarse(&file->st_mtim);
        makeCoarse(&file->st_ctim);
    }
    return result;
}

/// The same size for every number, so that only the times tell the files apart.
QByteArray textWith(int feed, int head)
{
    return "Dest BrackenXL Feed=Custom." + QByteArray::number(1000 + feed) + " head1Offset=Custom."
        + QByteArray::number(10 + head) + "\n";
}

/// As libcups writes, but without the moment in which the file is empty.
bool writeInPlace(const OptionsHome &home, const QByteArray &text)
{
    QFile file(home.userFile());
    return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && file.write(text) == text.size();
}

} // namespace

// These stand before the C library's, also for the library under test.
extern "C" __attribute__((visibility("default"))) int stat(const char *path, struct stat *file) noexcept
{
    return withCoarseTimes(int(syscall(SYS_newfstatat, AT_FDCWD, path, file, 0)), file);
}

extern "C" __attribute__((visibility("default"))) int fstat(int number, struct stat *file) noexcept
{
    return withCoarseTimes(int(syscall(SYS_newfstatat, number, "", file, AT_EMPTY_PATH)), file);
}

extern "C" __attribute__((visibility("default"))) ssize_t read(int number, void *bytes, size_t count)
{
    const ssize_t result = syscall(SYS_read, number, bytes, count);
    const std::function<void()> happening = std::move(afterRead);
    afterRead = nullptr;
    if (happening)
        happening();
    return result;
}

class TestCoarseTimes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void secondWriteOfATickIsSeen();
    void secondWriteOfATickIsKept();
    void writeDuringAReadIsSeen();
    void oldFileIsNotReadAgain();
    void fileIsReadAgainUntilItsDiskTellsTheNextWrite_data();
    void fileIsReadAgainUntilItsDiskTellsTheNextWrite();
};

void TestCoarseTimes::cleanup()
{
    nanosecondsOfTick = usualTick;
    secondsAdded = 0;
    afterRead = nullptr;
}

void TestCoarseTimes::secondWriteOfATickIsSeen()
{
    const OptionsHome home;
    QVERIFY(home.write(textWith(0, 0)));
    const CupsSupport options;
    for (int i = 1; i < 200; ++i) {
        QVERIFY(writeInPlace(home, textWith(i, 0)));
        QCOMPARE(options.getFeed(), 1000 + i);
    }
}

void TestCoarseTimes::secondWriteOfATickIsKept()
{
    const OptionsHome home;
    QVERIFY(home.write(textWith(0, 0)));
    CupsSupport options;
    for (int i = 1; i < 40; ++i) {
        QCOMPARE(options.getColorHeadOffset(1), 9 + i);
        QVERIFY(writeInPlace(home, textWith(i - 1, i)));
        options.setFeed(1000 + i);
        QCOMPARE(home.text(), textWith(i, i));
    }
}

void TestCoarseTimes::writeDuringAReadIsSeen()
{
    const OptionsHome home;
    QVERIFY(home.write(textWith(1, 0)));
    const timespec longAgo[] = {{1000000000, 0}, {1000000000, 0}};
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(home.userFile()).constData(), longAgo, 0), 0);
    bool isWritten = false;
    afterRead = [&home, &isWritten] { isWritten = writeInPlace(home, textWith(2, 0)); };
    QCOMPARE(CupsSupport().getFeed(), 1002);
    QVERIFY(isWritten);
}

void TestCoarseTimes::oldFileIsNotReadAgain()
{
    const OptionsHome home;
    QVERIFY(home.write(textWith(1, 0)));
    QTest::qSleep(100);
    const CupsSupport options;
    QCOMPARE(options.getFeed(), 1001);
    int reads = 0;
    afterRead = [&reads] { ++reads; };
    QCOMPARE(options.getFeed(), 1001);
    QCOMPARE(options.getColorHeadOffset(1), 10);
    afterRead = nullptr;
    QCOMPARE(reads, 0);
}

void TestCoarseTimes::fileIsReadAgainUntilItsDiskTellsTheNextWrite_data()
{
    QTest::addColumn<qint64>("tick");
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("readings");
    QTest::newRow("whole seconds, young") << qint64(wholeSecond) << 1 << 1;
    QTest::newRow("whole seconds, old") << qint64(wholeSecond) << 3 << 0;
    QTest::newRow("parts of seconds, as old") << qint64(1) << 1 << 0;
    QTest::newRow("from the future") << qint64(1) << -100 << 1;
}

void TestCoarseTimes::fileIsReadAgainUntilItsDiskTellsTheNextWrite()
{
    QFETCH(qint64, tick);
    QFETCH(int, age);
    QFETCH(int, readings);
    const OptionsHome home;
    QVERIFY(home.write(textWith(1, 0)));
    nanosecondsOfTick = long(tick);
    secondsAdded = age;
    const CupsSupport options;
    QCOMPARE(options.getFeed(), 1001);
    int reads = 0;
    afterRead = [&reads] { ++reads; };
    QCOMPARE(options.getFeed(), 1001);
    QCOMPARE(reads, readings);
}

QTEST_APPLESS_MAIN(TestCoarseTimes)
#include "tst_coarsetimes.moc"
