// No getter and no setter ever speaks to a scheduler.
#include "cupssupport.h"
#include "filebytes.h"
#include "optionshome.h"

#include <QtTest/QtTest>

#include <cerrno>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

class TestWithoutScheduler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nobodyCallsTheScheduler();
    void librariesOfCupsAreNotLoaded();
};

void TestWithoutScheduler::nobodyCallsTheScheduler()
{
    const OptionsHome home;
    const QByteArray path = (home.path() + QStringLiteral("/cups.sock")).toLocal8Bit();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    QVERIFY(size_t(path.size()) < sizeof address.sun_path);
    qstrcpy(address.sun_path, path.constData());
    const int scheduler = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    QVERIFY(scheduler >= 0);
    QCOMPARE(bind(scheduler, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    QCOMPARE(listen(scheduler, 8), 0);
    qputenv("CUPS_SERVER", path);

    CupsSupport options;
    options.setMirror(true);
    options.setFeed(options.getFeed() + 1);
    const bool isMirrored = options.getMirror();
    qunsetenv("CUPS_SERVER");
    const int call = accept(scheduler, nullptr, nullptr);
    const int error = errno;
    close(scheduler);
    QVERIFY(isMirrored);
    QCOMPARE(call, -1);
    QCOMPARE(error, EAGAIN);
}

void TestWithoutScheduler::librariesOfCupsAreNotLoaded()
{
    const QByteArray maps = FileBytes::read(QStringLiteral("/proc/self/maps"));
    QVERIFY(maps.contains("/libCupsSupport.so.1"));
    QVERIFY(!maps.contains("/libcups.so"));
}

QTEST_APPLESS_MAIN(TestWithoutScheduler)
#include "tst_withoutscheduler.moc"
