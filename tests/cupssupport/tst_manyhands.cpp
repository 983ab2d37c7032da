// The options under many hands: processes that write at the same time, and processes that are killed.
//
// The disk syncs of the writers are left out, which lets far more moments of a change be hit in the same
// time.
#include "cupssupport.h"
#include "diskcalls.h"
#include "forkedworker.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <csignal>
#include <fcntl.h>
#include <random>
#include <unistd.h>

namespace {

const QByteArray start = QByteArrayLiteral("# mine\nDest Ghost Feed=Custom.9\nDest BrackenXL ");
const QByteArray end = QByteArrayLiteral(" Keep='as it is'\nDest BrackenXL/draft Feed=Custom.8\n");

/// The number that the process wrote last into the pipe \a file, which has only whole numbers, after \a
/// number.
int lastNumberIn(int file, int number)
{
    int next = 0;
    while (read(file, &next, sizeof next) == sizeof next)
        number = next;
    return number;
}

int feedIn(const QByteArray &text)
{
    const QByteArray lead = start + "Feed=Custom.";
    if (!text.startsWith(lead) || !text.endsWith(end))
        return -1;
    return text.mid(lead.size(), text.size() - lead.size() - end.size()).toInt();
}

} // namespace

class TestManyHands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setIsOnTheDiskBeforeItReturns();
    void killedWriterLeavesTheOldOrTheNewFile();
    void twoProcessesLoseNothing();
};

void TestManyHands::setIsOnTheDiskBeforeItReturns()
{
    const OptionsHome home;
    CupsSupport options;
    // The name of the folder, the file's bytes, its name in the folder.
    const QStringList change{QStringLiteral("sync ~/.cups/lpoptions.new"),
                             QStringLiteral("rename lpoptions.new lpoptions"),
                             QStringLiteral("sync ~/.cups")};
    const QStringList folder{QStringLiteral("make ~/.cups"), QStringLiteral("sync ~")};
    {
        const DiskCalls::Record record;
        options.setFeed(1);
        QCOMPARE(record.steps(home.path()), folder + change);
    }
    {
        const DiskCalls::Record record;
        options.setFeed(2);
        QCOMPARE(record.steps(home.path()), change);
    }
    const DiskCalls::Record record;
    options.setFeed(2);
    QCOMPARE(record.steps(home.path()), QStringList());
}

void TestManyHands::killedWriterLeavesTheOldOrTheNewFile()
{
    const OptionsHome home;
    QVERIFY(home.write(start + "Feed=Custom.1" + end));
    std::mt19937 random(3);
    std::uniform_int_distribution<int> microseconds(0, 1500);
    int last = 1;
    int moved = 0;
    for (int i = 0; i < 200; ++i) {
        int pipe[2] = {-1, -1};
        QCOMPARE(pipe2(pipe, O_CLOEXEC), 0);
        int reported = 0;
        {
            ForkedWorker worker([last, &pipe] {
                DiskCalls::setSyncing(false);
                CupsSupport options;
                for (int number = last; number < last + 100000; ++number) {
                    const int value = 1 + number % 1999;
                    options.setFeed(value);
                    if (write(pipe[1], &value, sizeof value) != sizeof value)
                        _exit(1);
                }
            });
            close(pipe[1]);
            // How long a process takes to start is the machine's business.
            QCOMPARE(read(pipe[0], &reported, sizeof reported), ssize_t(sizeof reported));
            usleep(useconds_t(microseconds(random)));
            worker.kill();
        }
        reported = lastNumberIn(pipe[0], reported);
        close(pipe[0]);
        const int found = feedIn(home.text());
        QVERIFY2(found >= 1, home.text().constData());
        // What was said to be set is there, or the one that was being set.
        QVERIFY(found == reported || found == 1 + reported % 1999);
        QVERIFY(home.files().size() <= 2);
        moved += found != last ? 1 : 0;
        last = found;
    }
    QVERIFY2(moved > 150, qPrintable(QString::number(moved)));
    CupsSupport().setFeed(last == 7 ? 8 : 7);
    QCOMPARE(home.files(), QStringList{QStringLiteral("lpoptions")});
}

void TestManyHands::twoProcessesLoseNothing()
{
    constexpr int count = 1000;
    const OptionsHome home;
    QVERIFY(home.write(start + "Dithering=65 Feed=0 Stop=0" + end));
    ForkedWorker feeder([] {
        DiskCalls::setSyncing(false);
        CupsSupport options;
        for (int value = 1; value <= count; ++value) {
            options.setFeed(value);
            if (options.getFeed() != value)
                _exit(1);
        }
    });
    ForkedWorker stopper([] {
        DiskCalls::setSyncing(false);
        CupsSupport options;
        for (int value = 1; value <= count; ++value) {
            options.setStop(-value);
            if (options.getStop() != -value)
                _exit(1);
        }
    });
    const CupsSupport reader;
    int feed = 0;
    while (feeder.isRunning() || stopper.isRunning()) {
        const int next = reader.getFeed();
        QVERIFY(next >= feed);
        feed = next;
        QCOMPARE(reader.getDithering(), 65);
    }
    QVERIFY(feeder.finish() == 0);
    QVERIFY(stopper.finish() == 0);
    QCOMPARE(home.text(), start + "Dithering=65 Feed=Custom.1000 Stop=Custom.-1000" + end);
}

QTEST_APPLESS_MAIN(TestManyHands)
#include "tst_manyhands.moc"
