// What a QML author meets in ZBPrinterHistory: one object an engine, its list in a view's model, and the
// clock that was set when the object was made.
#include "fakeprintqueuedaemon.h"
#include "jobwire.h"
#include "qmlsession.h"
#include "settingsfile.h"

#include <zbprinterhistory.h>
#include <zbsettingsmain.h>

#include <QtCore/QPointer>
#include <QtTest/QtTest>

namespace {

ZBPrinterHistory *historyOf(QmlSession &session)
{
    return session.value(QStringLiteral("ZBPrinterHistory")).value<ZBPrinterHistory *>();
}

PrintJobMetaData job(const QString &guid)
{
    PrintJobMetaData job;
    job.timeStamp = QStringLiteral("1614953220000"); // 14:07 on 5 March 2021
    job.GUID = guid;
    job.jobName = QStringLiteral("Label ") + guid;
    job.copyCount = 2;
    job.supplyMileage = 812.5;
    return job;
}

/// A daemon with these jobs, which answers anything else with an error.
FakePrintQueueDaemon::Answer answering(const QStringList &guids)
{
    return [guids](const QDBusMessage &call) {
        const QString method = call.member();
        if (method == QLatin1String("getJobList"))
            return call.createReply(guids);
        if (method == QLatin1String("getJobInfo"))
            return call.createReply(QVariant::fromValue(job(call.arguments().value(0).toString())));
        if (method != QLatin1String("getChangedJobs"))
            return call.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("not here"));
        PrintJobMetaDataList jobs;
        for (const QString &guid : guids)
            jobs += job(guid);
        return call.createReply({QStringLiteral("epoch"), QVariant::fromValue(qulonglong(1)), true,
                                 QVariant::fromValue(jobs), QStringList(), false});
    };
}

} // namespace

class TestQmlHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerJobTypes(); }
    void init() { SettingsFile::removeAll(); }

    void oneObjectServesTheWholeEngineAndEndsWithIt();
    void cannotBeCreated();
    void jobsAreObjectsOfJavaScript();
    void clockIsTheOneThatWasSetWhenTheObjectWasMade_data();
    void clockIsTheOneThatWasSetWhenTheObjectWasMade();
    void modelTakesTheJobsOfTheHistory_data();
    void modelTakesTheJobsOfTheHistory();
    void missingArgumentIsAnError();
};

void TestQmlHistory::oneObjectServesTheWholeEngineAndEndsWithIt()
{
    QPointer<ZBPrinterHistory> history;
    {
        QmlSession session;
        history = historyOf(session);
        QVERIFY(history);
        QCOMPARE(historyOf(session), history.data());
        QCOMPARE(history->parent(), &session.engine());
        QCOMPARE(QByteArray(history->metaObject()->className()), QByteArray("ZBPrinterHistory"));
        QCOMPARE(session.value(QStringLiteral("ZBPrinterHistory.printJobsHistory.length")), QVariant(0));
        QCOMPARE(session.takeWarnings(), QStringList());
    }
    QVERIFY(!history);
}

void TestQmlHistory::cannotBeCreated()
{
    QmlSession session;
    QVERIFY(!session.make(QStringLiteral("ZBPrinterHistory {}")));
    QVERIFY2(session.errorText().contains(QStringLiteral("Element is not creatable.")),
             qPrintable(session.errorText()));
}

void TestQmlHistory::jobsAreObjectsOfJavaScript()
{
    const FakePrintQueueDaemon daemon(answering({QStringLiteral("a")}));
    QVERIFY(daemon.isOnTheBus());
    QmlSession session;
    QCOMPARE(session
                 .run(QStringLiteral("let job = ZBPrinterHistory.printJobsHistory[0];"
                                     "return [Object.keys(job).length, job.GUID, job.jobName, job.copyCount,"
                                     "        job.supplyMileage, job.imagePath].join('|')"))
                 .toString(),
             QStringLiteral("23|a|Label a|2|812.5|file:///"));
}

void TestQmlHistory::clockIsTheOneThatWasSetWhenTheObjectWasMade_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("time");
    const QString longClock = QStringLiteral("03/05/2021 14:07");
    const QString shortClock = QStringLiteral("03/05/2021 14:07pm");
    QTest::newRow("nothing") << QVariant() << shortClock;
    QTest::newRow("on") << QVariant(true) << longClock;
    QTest::newRow("off") << QVariant(false) << shortClock;
    QTest::newRow("text on") << QVariant(QStringLiteral("true")) << longClock;
    QTest::newRow("text off") << QVariant(QStringLiteral("false")) << shortClock;
    QTest::newRow("number") << QVariant(1) << longClock;
}

void TestQmlHistory::clockIsTheOneThatWasSetWhenTheObjectWasMade()
{
    QFETCH(QVariant, stored);
    QFETCH(QString, time);
    const FakePrintQueueDaemon daemon(answering({QStringLiteral("a")}));
    QVERIFY(daemon.isOnTheBus());
    QmlSession session;
    if (stored.isValid())
        session.settings()->setSetting(session.settings()->KEY_DATETIME_24HOUR(), stored);
    const QString shown = QStringLiteral("ZBPrinterHistory.printJobsHistory[0].timeStamp");
    QCOMPARE(session.value(shown).toString(), time);
    session.settings()->setSetting(session.settings()->KEY_DATETIME_24HOUR(), !stored.toBool());
    QCOMPARE(session.value(shown).toString(), time);
}

void TestQmlHistory::modelTakesTheJobsOfTheHistory_data()
{
    QTest::addColumn<QString>("property");
    QTest::newRow("followed") << QStringLiteral("history: ZBPrinterHistory");
    QTest::newRow("bound") << QStringLiteral("jobs: ZBPrinterHistory.printJobsHistory");
}

void TestQmlHistory::modelTakesTheJobsOfTheHistory()
{
    QFETCH(QString, property);
    const FakePrintQueueDaemon daemon(answering({QStringLiteral("a"), QStringLiteral("b")}));
    QVERIFY(daemon.isOnTheBus());
    QmlSession session;
    const std::unique_ptr<QObject> page =
        session.make(QStringLiteral("Instantiator { property var names: []; model: ZBPrintJobModel { %1 }\n"
                                    "delegate: QtObject { Component.onCompleted: names.push("
                                    "model.jobName + ' ' + model.job.GUID + ' ' + model.supplyMileage) } }")
                         .arg(property));
    QVERIFY2(page, qPrintable(session.errorText()));
    QStringList names = page->property("names").toStringList();
    names.sort();
    QCOMPARE(names, QStringList({QStringLiteral("Label a a 812.5"), QStringLiteral("Label b b 812.5")}));
    QCOMPARE(session.takeWarnings(), QStringList());
}

void TestQmlHistory::missingArgumentIsAnError()
{
    QmlSession session;
    QCOMPARE(session.run(QStringLiteral(
                 "try { ZBPrinterHistory.reprintPrintJob() } catch (error) { return error.message }")),
             QVariant(QStringLiteral("Insufficient arguments")));
}

QTEST_GUILESS_MAIN(TestQmlHistory)
#include "tst_qmlhistory.moc"
