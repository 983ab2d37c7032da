// How ZBSettingsMain learns and follows the state of the internet connection from the utility daemon, in
// every state that the daemon can be in.
#include "emissionrecorder.h"
#include "fakeutilitydaemon.h"
#include "messagelog.h"
#include "settingsfile.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtTest/QtTest>

#include <memory>

namespace {

const QString changed = QStringLiteral("isInternetConnectedChanged");
const QString absentText = QStringLiteral("failed to create the utilityd interface, is it running?");

QStringList methodsOf(const QVector<UtilityDaemon::Call> &calls)
{
    QStringList result;
    for (const UtilityDaemon::Call &call : calls)
        result.append(call.method + QLatin1Char('(') + call.signature + QLatin1Char(')'));
    return result;
}

/// Lets everything that is already under way on the bus arrive: an answer comes after what was sent before
/// it.
void letSignalsArrive()
{
    QDBusConnection::systemBus().interface()->serviceOwner(QStringLiteral("org.freedesktop.DBus"));
    QCoreApplication::processEvents();
}

} // namespace

Q_DECLARE_METATYPE(QVariantList)

class TestInternetState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stateAtStartIsTheDaemons_data();
    void stateAtStartIsTheDaemons();
    void daemonIsAskedOnceAtConstruction();
    void absentDaemonIsLoggedAndMeansNotConnected();
    void errorAtStartIsLoggedAndMeansNotConnected();
    void daemonThatDiesAtStartIsLoggedAndMeansNotConnected();
    void lateAnswerAtStartIsWaitedFor();
    void answerOfAnotherTypeAtStartIsLoggedAndMeansNotConnected_data();
    void answerOfAnotherTypeAtStartIsLoggedAndMeansNotConnected();

    void everySignalIsPassedOn();
    void propertyIsNewWhenTheSignalComes();
    void everyObjectFollowsTheSignal();
    void signalAfterADaemonsRestartIsFollowed();
    void signalOfADaemonThatWasAbsentAtStartIsNotFollowed();
    void signalMissingInTheIntrospectionIsFollowed();
    void signalOfAnotherProgramIsIgnored();
    void signalOfAnotherTypeIsIgnored_data();
    void signalOfAnotherTypeIsIgnored();
    void destroyedObjectIsNotReached();

    void checkAsksTheDaemonToLookAgain();
    void lateAnswerToACheckIsWaitedFor();
    void failedCheckReportsNothing_data();
    void failedCheckReportsNothing();

private:
    void startDaemon();

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<UtilityDaemon> m_daemon;
};

void TestInternetState::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
    m_daemon = std::make_unique<UtilityDaemon>();
}

void TestInternetState::cleanup()
{
    if (m_daemon && m_daemon->isRunning())
        m_daemon->kill();
    m_daemon.reset();
    m_log.reset();
}

void TestInternetState::startDaemon()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
}

void TestInternetState::stateAtStartIsTheDaemons_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("connected") << true;
    QTest::newRow("not connected") << false;
}

void TestInternetState::stateAtStartIsTheDaemons()
{
    QFETCH(bool, connected);
    startDaemon();
    QVERIFY(m_daemon->setInternetState(connected));
    m_log->clear();
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("isInternetConnected"), QVariant(connected));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestInternetState::daemonIsAskedOnceAtConstruction()
{
    startDaemon();
    QVERIFY(m_daemon->clearCalls());
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(methodsOf(m_daemon->calls()),
             QStringList({QStringLiteral("getInternetConnection()"), QStringLiteral("getShip()")}));
    for (int i = 0; i < 10; ++i)
        settings.property("isInternetConnected");
    QCOMPARE(m_daemon->calls().size(), 2);
}

void TestInternetState::absentDaemonIsLoggedAndMeansNotConnected()
{
    QElapsedTimer timer;
    timer.start();
    const ZBSettingsMain settings(nullptr, false);
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(settings.isInternetConnected(), false);
    const QVector<MessageLog::Message> messages = m_log->messages();
    QCOMPARE(m_log->texts().filter(absentText), QStringList{absentText});
    QCOMPARE(messages.first().text, absentText);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(messages.first().category, QStringLiteral("default"));
    QCOMPARE(m_log->texts().filter(QStringLiteral("getInternetConnection")), QStringList());
}

void TestInternetState::errorAtStartIsLoggedAndMeansNotConnected()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(m_daemon->failNextCall(QStringLiteral("com.corvanta.Test.Error"), QStringLiteral("on purpose")));
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.isInternetConnected(), false);
    QCOMPARE(m_log->texts(),
             QStringList{QStringLiteral("DBus Reply(getInternetConnection) is inValid  "
                                        "QDBusError(\"com.corvanta.Test.Error\", \"on purpose\")")});
    QCOMPARE(m_log->messages().first().type, QtDebugMsg);
    QCOMPARE(m_log->messages().first().category, QStringLiteral("default"));

    // It was linked all the same.
    EmissionRecorder recorder(&settings);
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(settings.isInternetConnected(), true);
}

void TestInternetState::daemonThatDiesAtStartIsLoggedAndMeansNotConnected()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(m_daemon->dieInNextCall());
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.isInternetConnected(), false);
    QVERIFY2(m_log->texts().value(0).startsWith(
                 QLatin1String("DBus Reply(getInternetConnection) is inValid  "
                               "QDBusError(\"org.freedesktop.DBus.Error.NoReply\", \"")),
             qPrintable(m_log->texts().value(0)));
    QCOMPARE(m_log->texts().filter(QStringLiteral("getInternetConnection")).size(), 1);
}

void TestInternetState::lateAnswerAtStartIsWaitedFor()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(m_daemon->delayNextCall(300));
    m_log->clear();
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.isInternetConnected(), true);
    QCOMPARE(m_log->texts(), QStringList());
}

void TestInternetState::answerOfAnotherTypeAtStartIsLoggedAndMeansNotConnected_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::newRow("text") << QVariantList{QStringLiteral("true")};
    QTest::newRow("int") << QVariantList{1};
    QTest::newRow("uint") << QVariantList{1u};
    QTest::newRow("list") << QVariantList{QStringList{QStringLiteral("true")}};
    QTest::newRow("nothing") << QVariantList();
}

void TestInternetState::answerOfAnotherTypeAtStartIsLoggedAndMeansNotConnected()
{
    QFETCH(QVariantList, answer);
    const FakeUtilityDaemon daemon([&answer](const QDBusMessage &call) {
        return call.member() == QLatin1String("getInternetConnection") ? call.createReply(answer)
                                                                       : call.createReply(QVariant(0));
    });
    QVERIFY(daemon.isOnTheBus());
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.isInternetConnected(), false);
    QCOMPARE(m_log->texts().size(), 1);
    QVERIFY2(m_log->texts().first().startsWith(
                 QLatin1String("DBus Reply(getInternetConnection) is inValid  QDBusError(\"")),
             qPrintable(m_log->texts().first()));
}

void TestInternetState::everySignalIsPassedOn()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(false));
    const ZBSettingsMain settings(nullptr, false);
    letSignalsArrive();
    EmissionRecorder recorder(&settings);
    for (const bool connected : {true, true, false, false, true})
        QVERIFY(m_daemon->setInternetState(connected));
    QVERIFY(recorder.waitFor(5));
    letSignalsArrive();
    QCOMPARE(recorder.values(changed), QVariantList({true, true, false, false, true}));
    QCOMPARE(recorder.emissions().size(), 5);
    QCOMPARE(settings.isInternetConnected(), true);
}

void TestInternetState::propertyIsNewWhenTheSignalComes()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(false));
    const ZBSettingsMain settings(nullptr, false);
    letSignalsArrive();
    QVariantList seen;
    connect(&settings, &ZBSettingsMain::isInternetConnectedChanged, this,
            [&] { seen.append(settings.property("isInternetConnected")); });
    EmissionRecorder recorder(&settings);
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(m_daemon->setInternetState(false));
    QVERIFY(recorder.waitFor(2));
    QCOMPARE(seen, QVariantList({true, false}));
}

void TestInternetState::everyObjectFollowsTheSignal()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(false));
    const ZBSettingsMain one(nullptr, false);
    const ZBSettingsMain two(nullptr, false);
    letSignalsArrive();
    EmissionRecorder ofOne(&one);
    EmissionRecorder ofTwo(&two);
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(ofOne.waitFor(1) && ofTwo.waitFor(1));
    QCOMPARE(ofOne.values(changed), QVariantList{true});
    QCOMPARE(ofTwo.values(changed), QVariantList{true});
}

void TestInternetState::signalAfterADaemonsRestartIsFollowed()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(false));
    const ZBSettingsMain settings(nullptr, false);
    QVERIFY(m_daemon->kill());
    startDaemon();
    letSignalsArrive();
    EmissionRecorder recorder(&settings);
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed).last(), QVariant(true));
    QCOMPARE(settings.isInternetConnected(), true);
}

void TestInternetState::signalOfADaemonThatWasAbsentAtStartIsNotFollowed()
{
    ZBSettingsMain settings(nullptr, false);
    startDaemon();
    const EmissionRecorder recorder(&settings);
    QSignalSpy daemonsSignal(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    QVERIFY(m_daemon->setInternetState(true));
    settings.checkInternetConnection();
    QTRY_VERIFY(daemonsSignal.count() >= 2);
    letSignalsArrive();
    QCOMPARE(recorder.names(), QStringList());
    QCOMPARE(settings.isInternetConnected(), false);
    QVERIFY(methodsOf(m_daemon->calls()).contains(QStringLiteral("checkInternetConnection()")));
    QVERIFY(!methodsOf(m_daemon->calls()).contains(QStringLiteral("getInternetConnection()")));
}

void TestInternetState::signalMissingInTheIntrospectionIsFollowed()
{
    FakeUtilityDaemon daemon([](const QDBusMessage &call) { return call.createReply(QVariant(false)); });
    QVERIFY(daemon.isOnTheBus());
    const ZBSettingsMain settings(nullptr, false);
    EmissionRecorder recorder(&settings);
    QVERIFY(daemon.sendInternetConnectionChanged({true}));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{true});
}

void TestInternetState::signalOfAnotherProgramIsIgnored()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(false));
    const ZBSettingsMain settings(nullptr, false);
    letSignalsArrive();
    EmissionRecorder recorder(&settings);
    {
        QDBusConnection other =
            QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("another program"));
        QDBusMessage signal =
            QDBusMessage::createSignal(QStringLiteral("/"), QStringLiteral("local.ZBUtilityd.UtilityDaemon"),
                                       QStringLiteral("onInternetConnectionChanged"));
        signal << true;
        QVERIFY(other.send(signal));
        // Answered after the signal was passed on.
        other.interface()->serviceOwner(QStringLiteral("org.freedesktop.DBus"));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("another program"));
    QVERIFY(m_daemon->setInternetState(false));
    QVERIFY(recorder.waitFor(1));
    letSignalsArrive();
    QCOMPARE(recorder.values(changed), QVariantList{false});
}

void TestInternetState::signalOfAnotherTypeIsIgnored_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("text") << QVariantList{QStringLiteral("true")};
    QTest::newRow("int") << QVariantList{1};
    QTest::newRow("nothing") << QVariantList();
}

void TestInternetState::signalOfAnotherTypeIsIgnored()
{
    QFETCH(QVariantList, arguments);
    FakeUtilityDaemon daemon([](const QDBusMessage &call) { return call.createReply(QVariant(false)); });
    QVERIFY(daemon.isOnTheBus());
    const ZBSettingsMain settings(nullptr, false);
    EmissionRecorder recorder(&settings);
    QVERIFY(daemon.sendInternetConnectionChanged(arguments));
    QVERIFY(daemon.sendInternetConnectionChanged({true}));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{true});
}

void TestInternetState::destroyedObjectIsNotReached()
{
    startDaemon();
    QSignalSpy daemonsSignal(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    auto settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    QVERIFY(m_daemon->setInternetState(true));
    settings.reset();
    QVERIFY(m_daemon->setInternetState(false));
    QTRY_COMPARE(daemonsSignal.count(), 2);
    letSignalsArrive();
}

void TestInternetState::checkAsksTheDaemonToLookAgain()
{
    startDaemon();
    QVERIFY(m_daemon->setInternetState(true));
    ZBSettingsMain settings(nullptr, false);
    letSignalsArrive();
    QVERIFY(m_daemon->clearCalls());
    m_log->clear();
    EmissionRecorder recorder(&settings);
    settings.checkInternetConnection();
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{true});
    QCOMPARE(methodsOf(m_daemon->calls()), QStringList{QStringLiteral("checkInternetConnection()")});
    QCOMPARE(m_log->texts(), QStringList());
}

void TestInternetState::lateAnswerToACheckIsWaitedFor()
{
    startDaemon();
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(m_daemon->delayNextCall(300));
    QElapsedTimer timer;
    timer.start();
    settings.checkInternetConnection();
    QVERIFY2(timer.elapsed() >= 300, qPrintable(QString::number(timer.elapsed())));
}

void TestInternetState::failedCheckReportsNothing_data()
{
    QTest::addColumn<QString>("way");
    for (const char *const way : {"absent", "error", "dying"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void TestInternetState::failedCheckReportsNothing()
{
    QFETCH(QString, way);
    if (way != QLatin1String("absent")) {
        startDaemon();
        QVERIFY(m_daemon->setInternetState(true));
    }
    ZBSettingsMain settings(nullptr, false);
    letSignalsArrive();
    if (way == QLatin1String("error"))
        QVERIFY(
            m_daemon->failNextCall(QStringLiteral("com.corvanta.Test.Error"), QStringLiteral("on purpose")));
    if (way == QLatin1String("dying"))
        QVERIFY(m_daemon->dieInNextCall());
    m_log->clear();
    const bool before = settings.isInternetConnected();
    const EmissionRecorder recorder(&settings);
    settings.checkInternetConnection();
    letSignalsArrive();
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    QCOMPARE(settings.isInternetConnected(), before);
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestInternetState)
#include "tst_internetstate.moc"
