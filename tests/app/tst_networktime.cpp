// NetworkTime on a bus: with a clock service, without one, and with one that fails.
#include "fakeclockservice.h"
#include "heartbeat.h"
#include "networktime.h"

#include <QtTest/QtTest>

#include <memory>

class TestNetworkTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stateIsAskedForAtTheStart_data();
    void stateIsAskedForAtTheStart();
    void withoutAServiceTheStateIsUnknown();
    void changeIsFollowed();
    void changeWithoutAValueIsAskedFor();
    void otherChangesAreLeftAlone();
    void serviceThatComesIsAsked();
    void serviceThatEndsChangesNothing();
    void silentServiceHoldsNothingUp();
    void askingAgainKeepsWhatIsKnown();
};

void TestNetworkTime::stateIsAskedForAtTheStart_data()
{
    QTest::addColumn<QVariant>("ntp");
    QTest::addColumn<NetworkTime::State>("state");
    QTest::newRow("on") << QVariant(true) << NetworkTime::On;
    QTest::newRow("off") << QVariant(false) << NetworkTime::Off;
    QTest::newRow("error") << QVariant() << NetworkTime::Unknown;
    QTest::newRow("wrong type") << QVariant(QStringLiteral("yes")) << NetworkTime::Unknown;
}

void TestNetworkTime::stateIsAskedForAtTheStart()
{
    QFETCH(QVariant, ntp);
    QFETCH(NetworkTime::State, state);
    const FakeClockService service(ntp);
    const NetworkTime networkTime;
    QCOMPARE(networkTime.state(), NetworkTime::Asking);
    QTRY_COMPARE(networkTime.state(), state);
}

void TestNetworkTime::withoutAServiceTheStateIsUnknown()
{
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::Unknown);
}

void TestNetworkTime::changeIsFollowed()
{
    FakeClockService service(true);
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
    QSignalSpy changes(&networkTime, &NetworkTime::stateChanged);
    service.setNetworkTime(false);
    QTRY_COMPARE(networkTime.state(), NetworkTime::Off);
    QCOMPARE(changes.count(), 1);
    service.setNetworkTime(true);
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
    QCOMPARE(service.questions(), 1);
}

void TestNetworkTime::changeWithoutAValueIsAskedFor()
{
    FakeClockService service(true);
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
    service.invalidate(false);
    QTRY_COMPARE(networkTime.state(), NetworkTime::Off);
    QCOMPARE(service.questions(), 2);
}

void TestNetworkTime::otherChangesAreLeftAlone()
{
    FakeClockService service(true);
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
    QSignalSpy changes(&networkTime, &NetworkTime::stateChanged);
    service.tellOfOthers();
    // What is told later arrives later.
    service.setNetworkTime(true);
    service.setNetworkTime(false);
    QTRY_COMPARE(networkTime.state(), NetworkTime::Off);
    QCOMPARE(changes.count(), 1);
}

void TestNetworkTime::serviceThatComesIsAsked()
{
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::Unknown);
    const FakeClockService service(false);
    QTRY_COMPARE(networkTime.state(), NetworkTime::Off);
}

void TestNetworkTime::serviceThatEndsChangesNothing()
{
    auto service = std::make_unique<FakeClockService>(false);
    const NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::Off);
    service.reset();
    service = std::make_unique<FakeClockService>(true);
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
}

void TestNetworkTime::silentServiceHoldsNothingUp()
{
    FakeClockService service(true);
    service.setSilent(true);
    std::unique_ptr<NetworkTime> networkTime;
    const qint64 pause =
        Heartbeat::longestPauseAround([&networkTime] { networkTime = std::make_unique<NetworkTime>(); }, 300);
    QVERIFY2(pause < 250, qPrintable(QString::number(pause)));
    QCOMPARE(networkTime->state(), NetworkTime::Asking);
    service.setNetworkTime(false);
    QTRY_COMPARE(networkTime->state(), NetworkTime::Off);
}

void TestNetworkTime::askingAgainKeepsWhatIsKnown()
{
    const FakeClockService service(true);
    NetworkTime networkTime;
    QTRY_COMPARE(networkTime.state(), NetworkTime::On);
    QSignalSpy changes(&networkTime, &NetworkTime::stateChanged);
    networkTime.refresh();
    QTRY_COMPARE(service.questions(), 2);
    QCOMPARE(networkTime.state(), NetworkTime::On);
    QCOMPARE(changes.count(), 0);
}

QTEST_GUILESS_MAIN(TestNetworkTime)
#include "tst_networktime.moc"
