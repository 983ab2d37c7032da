// The control interface: what it records, what it fixes, and every fault that it can prepare.
#include "statefile.h"
#include "utilitydaemon.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <QtTest/QtTest>

class DaemonFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void callsAreRecordedWithTheTypesOfTheWire();
    void callsOfTheControlInterfaceAreNotRecorded();
    void eachCallIsTold();
    void argumentsOfAnyTypeAreRecorded();
    void aFaultMeetsEveryMethod_data();
    void aFaultMeetsEveryMethod();
    void aFailedCallDoesNothing();
    void anErrorThatCannotBeSentIsRefused_data();
    void anErrorThatCannotBeSentIsRefused();
    void aDelayedCallIsAnsweredLaterAndOthersInTime();
    void anIgnoredCallIsNeverAnswered();
    void theDaemonDiesInTheCall();
    void faultsMeetOneCallEachInTheirOrder();
    void vanishingAnswersFirst();
    void theInternetStateCanBeFixed();
    void aCheckTellsTheFixedState();
    void followingTheRoutesAgainEndsTheFixedState();

private:
    std::unique_ptr<UtilityDaemon> m_daemon;
};

namespace {

/// Every method with good arguments.
struct Method
{
    const char *name;
    QVariantList arguments;
};

QVector<Method> methods()
{
    return {
        {"setDisplayDimTime", {3}},
        {"setDisplayPowerOffTime", {3}},
        {"setDisplayBrightness", {3U}},
        {"setAutomaticUpdateCheck", {false}},
        {"setTwentyFourHourMode", {true}},
        {"setDateFormat", {QStringLiteral("dd.MM.yyyy")}},
        {"getInternetConnection", {}},
        {"checkInternetConnection", {}},
        {"getShip", {}},
    };
}

QDBusPendingCall send(const QString &method, const QVariantList &arguments = {}, int timeout = -1)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
                                       QStringLiteral("local.ZBUtilityd.UtilityDaemon"), method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().asyncCall(message, timeout);
}

const QString errorName = QStringLiteral("com.example.Error.OnPurpose");

} // namespace

void DaemonFaultsTest::init()
{
    m_daemon = std::make_unique<UtilityDaemon>();
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
}

void DaemonFaultsTest::callsAreRecordedWithTheTypesOfTheWire()
{
    UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U});
    UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5});
    UtilityDaemon::call(QStringLiteral("setTwentyFourHourMode"), {QStringLiteral("true")});
    UtilityDaemon::call(QStringLiteral("setDateFormat"),
                        {QStringList{QStringLiteral("a"), QStringLiteral("b")}});
    UtilityDaemon::call(QStringLiteral("getShip"));
    UtilityDaemon::call(QStringLiteral("noSuchMethod"), {1.5, true});

    const QVector<UtilityDaemon::Call> calls = m_daemon->calls();
    const QVector<UtilityDaemon::Call> expected{
        {QStringLiteral("setDisplayBrightness"), QStringLiteral("u"), {5U}},
        {QStringLiteral("setDisplayBrightness"), QStringLiteral("i"), {5}},
        {QStringLiteral("setTwentyFourHourMode"), QStringLiteral("s"), {QStringLiteral("true")}},
        {QStringLiteral("setDateFormat"),
         QStringLiteral("as"),
         {QStringList{QStringLiteral("a"), QStringLiteral("b")}}},
        {QStringLiteral("getShip"), QString(), {}},
        {QStringLiteral("noSuchMethod"), QStringLiteral("db"), {1.5, true}},
    };
    QCOMPARE(calls.size(), expected.size());
    for (int index = 0; index < calls.size(); ++index) {
        QCOMPARE(calls[index].method, expected[index].method);
        QCOMPARE(calls[index].signature, expected[index].signature);
        QCOMPARE(calls[index].arguments, expected[index].arguments);
        for (int argument = 0; argument < calls[index].arguments.size(); ++argument)
            QCOMPARE(calls[index].arguments[argument].userType(),
                     expected[index].arguments[argument].userType());
    }

    QVERIFY(m_daemon->clearCalls());
    QVERIFY(m_daemon->calls().isEmpty());
}

void DaemonFaultsTest::callsOfTheControlInterfaceAreNotRecorded()
{
    QVERIFY(m_daemon->setShip(2));
    QVERIFY(m_daemon->setInternetState(true));
    QVERIFY(m_daemon->calls().isEmpty());
}

void DaemonFaultsTest::eachCallIsTold()
{
    QSignalSpy called(m_daemon.get(), &UtilityDaemon::called);
    send(QStringLiteral("setDisplayBrightness"), {50});
    QTRY_COMPARE(called.size(), 1);
    const QVariantList expected{QStringLiteral("setDisplayBrightness"), QStringLiteral("i"),
                                QVariant(QVariantList{50})};
    QCOMPARE(called.first(), expected);
}

void DaemonFaultsTest::argumentsOfAnyTypeAreRecorded()
{
    const QVariantMap map{{QStringLiteral("key"), 1}};
    const QString path = QStringLiteral("/a/path");
    UtilityDaemon::call(QStringLiteral("setDateFormat"),
                        {map, QVariant::fromValue(QDBusVariant(2U)),
                         QVariant::fromValue(QDBusObjectPath(path)), QByteArray("bytes"),
                         QVariant(QVariantList{1, QStringLiteral("two")})});
    QCOMPARE(m_daemon->calls().size(), 1);
    const UtilityDaemon::Call call = m_daemon->calls().first();
    QCOMPARE(call.signature, QStringLiteral("a{sv}voayav"));
    QCOMPARE(call.arguments.size(), 5);
    QCOMPARE(qdbus_cast<QVariantMap>(call.arguments[0]), map);
    QCOMPARE(call.arguments[1].value<QDBusVariant>().variant(), QVariant(2U));
    QCOMPARE(call.arguments[2].value<QDBusObjectPath>().path(), path);
    QCOMPARE(call.arguments[3], QVariant(QByteArray("bytes")));
}

void DaemonFaultsTest::aFaultMeetsEveryMethod_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    for (const Method &method : methods())
        QTest::newRow(method.name) << QString::fromLatin1(method.name) << method.arguments;
}

void DaemonFaultsTest::aFaultMeetsEveryMethod()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    const QString text = QStringLiteral("a text with \"quotes\" and ä");
    QVERIFY2(m_daemon->failNextCall(errorName, text), qPrintable(m_daemon->errorText()));
    const QDBusMessage failed = UtilityDaemon::call(method, arguments);
    QCOMPARE(failed.errorName(), errorName);
    QCOMPARE(failed.errorMessage(), text);
    QCOMPARE(UtilityDaemon::call(method, arguments).type(), QDBusMessage::ReplyMessage);

    QVERIFY(m_daemon->delayNextCall(50));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(UtilityDaemon::call(method, arguments).type(), QDBusMessage::ReplyMessage);
    QVERIFY(clock.elapsed() >= 50);

    QVERIFY(m_daemon->ignoreNextCall());
    QDBusPendingCall ignored = send(method, arguments, 50);
    ignored.waitForFinished();
    QCOMPARE(ignored.error().type(), QDBusError::NoReply);

    QCOMPARE(m_daemon->calls().size(), 4);
    QVERIFY(m_daemon->dieInNextCall());
    QCOMPARE(UtilityDaemon::call(method, arguments).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    QVERIFY(m_daemon->waitForEnd());
}

void DaemonFaultsTest::aFailedCallDoesNothing()
{
    QSignalSpy told(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    QVERIFY(m_daemon->failNextCall(errorName, QString()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U}).errorName(), errorName);
    QVERIFY(stateText(m_daemon->stateDirectory()).isEmpty());
    QVERIFY(m_daemon->failNextCall(errorName, QString()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).errorName(), errorName);
    // The signal of this check comes after one that the failed check had sent.
    UtilityDaemon::call(QStringLiteral("checkInternetConnection"));
    QTRY_VERIFY(!told.isEmpty());
    QCOMPARE(told.size(), 1);
}

void DaemonFaultsTest::anErrorThatCannotBeSentIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("one part") << QStringLiteral("Error");
    QTest::newRow("empty part") << QStringLiteral("com..Error");
    QTest::newRow("ends with a dot") << QStringLiteral("com.Error.");
    QTest::newRow("digit first") << QStringLiteral("com.1Error");
    QTest::newRow("hyphen") << QStringLiteral("com.an-error");
    QTest::newRow("blank") << QStringLiteral("com.an error");
    QTest::newRow("umlaut") << QStringLiteral("com.Ärror");
    QTest::newRow("256 characters") << QStringLiteral("com.").leftJustified(256, QLatin1Char('e'));
}

void DaemonFaultsTest::anErrorThatCannotBeSentIsRefused()
{
    QFETCH(QString, name);
    QVERIFY(!m_daemon->failNextCall(name, QStringLiteral("text")));
    QCOMPARE(m_daemon->errorText(),
             QStringLiteral("FailNextCall: \"%1\" is no name of a D-Bus error").arg(name));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
}

void DaemonFaultsTest::aDelayedCallIsAnsweredLaterAndOthersInTime()
{
    QVERIFY(m_daemon->setShip(2));
    QVERIFY(m_daemon->delayNextCall(1000));
    QElapsedTimer clock;
    clock.start();
    QDBusPendingCall delayed = send(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{2});
    QVERIFY(!delayed.isFinished());
    QVERIFY(clock.elapsed() < 1000);
    // What the call asks for is done at once.
    QCOMPARE(stateObject(m_daemon->stateDirectory()).value(QStringLiteral("displayBrightness")),
             QJsonValue(5));

    delayed.waitForFinished();
    QVERIFY(!delayed.isError());
    QVERIFY(clock.elapsed() >= 1000);
}

void DaemonFaultsTest::anIgnoredCallIsNeverAnswered()
{
    QVERIFY(m_daemon->ignoreNextCall());
    QDBusPendingCall ignored = send(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
    QVERIFY(!ignored.isFinished());
    QVERIFY(stateText(m_daemon->stateDirectory()).isEmpty());
    // The bus answers in the daemon's place when it ends.
    QVERIFY(m_daemon->terminate());
    ignored.waitForFinished();
    QCOMPARE(ignored.error().type(), QDBusError::NoReply);
}

void DaemonFaultsTest::theDaemonDiesInTheCall()
{
    QVERIFY(m_daemon->dieInNextCall());
    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    QVERIFY(m_daemon->waitForEnd());
    QCOMPARE(m_daemon->exitCode(), 1);
    QVERIFY(stateText(m_daemon->stateDirectory()).isEmpty());
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
}

void DaemonFaultsTest::faultsMeetOneCallEachInTheirOrder()
{
    QVERIFY(m_daemon->failNextCall(QStringLiteral("com.example.First"), QString()));
    QVERIFY(m_daemon->delayNextCall(1));
    QVERIFY(m_daemon->failNextCall(QStringLiteral("com.example.Third"), QString()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).errorName(), QStringLiteral("com.example.First"));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(UtilityDaemon::call(QStringLiteral("noSuchMethod")).errorName(),
             QStringLiteral("com.example.Third"));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).type(), QDBusMessage::ReplyMessage);
}

void DaemonFaultsTest::vanishingAnswersFirst()
{
    QVERIFY2(m_daemon->vanish(), qPrintable(m_daemon->errorText()));
    QCOMPARE(m_daemon->exitCode(), 0);
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));
}

void DaemonFaultsTest::theInternetStateCanBeFixed()
{
    QSignalSpy told(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    for (const bool connected : {true, false, false, true, true}) {
        told.clear();
        QVERIFY(m_daemon->setInternetState(connected));
        QTRY_COMPARE(told.size(), 1);
        QCOMPARE(told.first(), QVariantList{connected});
        QCOMPARE(UtilityDaemon::call(QStringLiteral("getInternetConnection")).arguments(),
                 QVariantList{connected});
    }
}

void DaemonFaultsTest::aCheckTellsTheFixedState()
{
    for (const bool connected : {true, false}) {
        QVERIFY(m_daemon->setInternetState(connected));
        QSignalSpy told(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
        QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
                 QDBusMessage::ReplyMessage);
        QTRY_VERIFY(!told.isEmpty());
        QCOMPARE(told.last(), QVariantList{connected});
    }
}

void DaemonFaultsTest::followingTheRoutesAgainEndsTheFixedState()
{
    const QVariantList real = UtilityDaemon::call(QStringLiteral("getInternetConnection")).arguments();
    const bool other = !real.first().toBool();
    QVERIFY(m_daemon->setInternetState(other));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getInternetConnection")).arguments(), QVariantList{other});

    QSignalSpy told(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    QVERIFY(m_daemon->followRoutes());
    QTRY_VERIFY(!told.isEmpty());
    QCOMPARE(told.last(), real);
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getInternetConnection")).arguments(), real);

    // A second time nothing changes, so only the check is told.
    told.clear();
    QVERIFY(m_daemon->followRoutes());
    QCOMPARE(UtilityDaemon::call(QStringLiteral("checkInternetConnection")).type(),
             QDBusMessage::ReplyMessage);
    QTRY_VERIFY(!told.isEmpty());
    QCOMPARE(told.size(), 1);
}

QTEST_GUILESS_MAIN(DaemonFaultsTest)
#include "tst_daemonfaults.moc"
