// That what the daemon was told survives its end, whatever that end is, and that a bad state file does not
// stop it.
#include "statefile.h"
#include "utilitydaemon.h"

#include <QtCore/QJsonDocument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingReply>
#include <QtTest/QtTest>

class DaemonStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void valuesSurviveARestart();
    void aValueIsOnTheDiskWhenItIsAnswered();
    void killedAmongCallsTheStateIsThatOfTheLastAnswerOrLater();
    void aReaderNeverSeesHalfAState();
    void aDamagedStateIsSetAsideAndSaid();
    void aStateThatCannotBeWrittenIsAnErrorAndTheOldValueStays();
    void aStateThatIsNotOnTheDiskIsAnError();
    void aStateFolderThatCannotBeMadeIsAnErrorOfTheCall();

private:
    QString directory() const { return m_daemon->stateDirectory(); }
    static bool setBrightness(uint level);
    static QDBusPendingCall sendBrightness(uint level);
    int keptBrightness() const;

    std::unique_ptr<UtilityDaemon> m_daemon;
};

void DaemonStateTest::init()
{
    m_daemon = std::make_unique<UtilityDaemon>();
}

bool DaemonStateTest::setBrightness(uint level)
{
    return UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {level}).type()
        == QDBusMessage::ReplyMessage;
}

QDBusPendingCall DaemonStateTest::sendBrightness(uint level)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
        QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QStringLiteral("setDisplayBrightness"));
    message.setArguments({level});
    return QDBusConnection::systemBus().asyncCall(message);
}

int DaemonStateTest::keptBrightness() const
{
    return stateObject(directory()).value(QStringLiteral("displayBrightness")).toInt(-1);
}

void DaemonStateTest::valuesSurviveARestart()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(setBrightness(3));
    QVERIFY(m_daemon->setShip(2));
    QVERIFY(m_daemon->terminate());

    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{2});
    // The next change is written together with what was read.
    QCOMPARE(UtilityDaemon::call(QStringLiteral("setDisplayDimTime"), {4}).type(),
             QDBusMessage::ReplyMessage);
    const QJsonObject expected{
        {QStringLiteral("format"), QStringLiteral("zbutilityd state 1")},
        {QStringLiteral("displayDimTime"), 4},
        {QStringLiteral("displayPowerOffTime"), 11},
        {QStringLiteral("displayBrightness"), 3},
        {QStringLiteral("automaticUpdateCheck"), true},
        {QStringLiteral("twentyFourHourMode"), false},
        {QStringLiteral("dateFormat"), QStringLiteral("MM/dd/yy")},
        {QStringLiteral("shipMode"), 2},
    };
    QCOMPARE(stateObject(directory()), expected);
}

void DaemonStateTest::aValueIsOnTheDiskWhenItIsAnswered()
{
    for (const uint level : {2U, 9U, 1U}) {
        QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
        QVERIFY(setBrightness(level));
        QVERIFY2(m_daemon->kill(), qPrintable(m_daemon->errorText()));
        QCOMPARE(keptBrightness(), int(level));
    }
}

void DaemonStateTest::killedAmongCallsTheStateIsThatOfTheLastAnswerOrLater()
{
    for (int round = 0; round < 10; ++round) {
        QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
        // Calls that arrive before the daemon's event loop runs may overtake one another in QtDBus.
        QVERIFY(setBrightness(1));
        // Brightness 1 to 9 in turn; one value cannot be taken for another within nine calls.
        QVector<QDBusPendingCall> pending;
        for (uint number = 0; number < 9; ++number)
            pending.append(sendBrightness(number + 1));
        pending[round % 9].waitForFinished();
        QVERIFY2(m_daemon->kill(), qPrintable(m_daemon->errorText()));

        int lastAnswered = 0;
        for (int number = 0; number < pending.size(); ++number) {
            pending[number].waitForFinished();
            if (!pending[number].isError())
                lastAnswered = number + 1;
        }
        QVERIFY(lastAnswered >= round % 9 + 1);
        QVERIFY2(keptBrightness() >= lastAnswered,
                 qPrintable(QStringLiteral("answered %1, kept %2").arg(lastAnswered).arg(keptBrightness())));
        QCOMPARE(m_daemon->standardError(), QString());
    }
}

void DaemonStateTest::aReaderNeverSeesHalfAState()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(setBrightness(1));
    for (int round = 0; round < 20; ++round) {
        QVector<QDBusPendingCall> pending;
        for (uint number = 0; number < 9; ++number)
            pending.append(sendBrightness(number + 1));
        while (!pending.last().isFinished()) {
            const QByteArray text = stateText(directory());
            QCOMPARE(QJsonDocument::fromJson(text).object().size(), 8);
            QCoreApplication::processEvents();
        }
        QVERIFY(!pending.last().isError());
    }
}

void DaemonStateTest::aDamagedStateIsSetAsideAndSaid()
{
    const QByteArray damaged(R"({"format": "zbutilityd state 1", "shipMode": 2, "displayBrigh)");
    QVERIFY(writeFile(stateFilePath(directory()), damaged));
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{0});
    QVERIFY(setBrightness(4));
    QCOMPARE(keptBrightness(), 4);
    QVERIFY(m_daemon->terminate());

    QFile aside(stateFilePath(directory()) + QStringLiteral(".damaged-1"));
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), damaged);
    const QString said = m_daemon->standardError();
    QCOMPARE(said.count(QLatin1Char('\n')), 1);
    QVERIFY2(said.startsWith(QLatin1String("zbutilityd: state file ")), qPrintable(said));
    QVERIFY2(said.contains(aside.fileName()), qPrintable(said));
}

void DaemonStateTest::aStateThatCannotBeWrittenIsAnErrorAndTheOldValueStays()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(m_daemon->setShip(1));
    QVERIFY(setBrightness(4));
    // A folder in the place of the file, since files that are read-only do not stop root.
    QVERIFY(QFile::remove(stateFilePath(directory())));
    QVERIFY(QDir(directory()).mkdir(QStringLiteral("state.json")));

    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.Failed"));
    QVERIFY2(reply.errorMessage().startsWith(stateFilePath(directory()) + QStringLiteral(": ")),
             qPrintable(reply.errorMessage()));
    QVERIFY(!m_daemon->setShip(2));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{1});

    QVERIFY(QDir(directory()).rmdir(QStringLiteral("state.json")));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("setDisplayDimTime"), {3}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(keptBrightness(), 4);
    QCOMPARE(stateObject(directory()).value(QStringLiteral("shipMode")), QJsonValue(1));
}

void DaemonStateTest::aStateThatIsNotOnTheDiskIsAnError()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(setBrightness(4));
    QVERIFY(m_daemon->terminate());

    qputenv("LD_PRELOAD", FAILING_SYNC);
    const QByteArray options = qgetenv("ASAN_OPTIONS");
    qputenv("ASAN_OPTIONS", options + ":verify_asan_link_order=0");
    const bool isStarted = m_daemon->start();
    qunsetenv("LD_PRELOAD");
    qputenv("ASAN_OPTIONS", options);
    QVERIFY2(isStarted, qPrintable(m_daemon->errorText()));

    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.Failed"));
    QVERIFY2(reply.errorMessage().endsWith(QLatin1String(": Input/output error")),
             qPrintable(reply.errorMessage()));
    QCOMPARE(keptBrightness(), 4);
    QCOMPARE(QDir(directory()).entryList(QDir::Files), QStringList{QStringLiteral("state.json")});
}

void DaemonStateTest::aStateFolderThatCannotBeMadeIsAnErrorOfTheCall()
{
    const QString file = directory() + QStringLiteral("/file");
    QVERIFY(writeFile(file, "no folder"));
    QVERIFY2(m_daemon->start({}, file + QStringLiteral("/state")), qPrintable(m_daemon->errorText()));
    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.Failed"));
    QCOMPARE(reply.errorMessage(), QStringLiteral("the folder %1/state cannot be created").arg(file));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{0});
}

QTEST_GUILESS_MAIN(DaemonStateTest)
#include "tst_daemonstate.moc"
