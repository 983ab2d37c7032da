// Waiting with the event loop running.
#include "waiting.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

class TestWaiting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatHoldsAlreadyIsNotWaitedFor();
    void eventThatMakesItTrueEndsTheWait();
    void waitEndsWithoutAnyEvent();
};

void TestWaiting::whatHoldsAlreadyIsNotWaitedFor()
{
    bool isProcessed = false;
    QMetaObject::invokeMethod(
        this, [&isProcessed] { isProcessed = true; }, Qt::QueuedConnection);
    const bool isReached = waitUntil([] { return true; }, 60000);
    const bool wasProcessedMeanwhile = isProcessed;
    // The event must not outlive what it writes to.
    QCoreApplication::processEvents();
    QVERIFY(isReached);
    QVERIFY(!wasProcessedMeanwhile);
    QVERIFY(isProcessed);
}

void TestWaiting::eventThatMakesItTrueEndsTheWait()
{
    QElapsedTimer timer;
    timer.start();
    bool isTrue = false;
    QTimer::singleShot(10, this, [&isTrue] { isTrue = true; });
    QVERIFY(waitUntil([&isTrue] { return isTrue; }, 60000));
    QVERIFY(timer.elapsed() < 30000);
}

void TestWaiting::waitEndsWithoutAnyEvent()
{
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!waitUntil([] { return false; }, 100));
    // Qt's ordinary timers may be early by a twentieth.
    QVERIFY(timer.elapsed() >= 90);
    QVERIFY(timer.elapsed() < 30000);
}

QTEST_GUILESS_MAIN(TestWaiting)
#include "tst_waiting.moc"
