// The ship mode: from the utility daemon, and from the boot-loader environment when the daemon fails.
#include "emissionrecorder.h"
#include "fakeutilitydaemon.h"
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusSignature>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVariant>
#include <QtTest/QtTest>

#include <limits>
#include <memory>

namespace {

const QString tool = QStringLiteral("fw_printenv");
const QStringList fallback{tool, QStringLiteral("-n"), QStringLiteral("zbShip")};

QStringList processNames(const ZBSettingsMain &settings)
{
    QStringList names;
    const QList<QProcess *> processes = settings.findChildren<QProcess *>();
    for (const QProcess *const process : processes)
        names.append(process->program());
    return names;
}

} // namespace

class TestShipMode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void daemonsReplyOfTwoIsMilitary_data();
    void daemonsReplyOfTwoIsMilitary();
    void replyOfAnyBasicTypeIsConverted_data();
    void replyOfAnyBasicTypeIsConverted();
    void lateReplyIsWaitedFor();
    void bootLoaderDecidesWithoutTheDaemon_data();
    void bootLoaderDecidesWithoutTheDaemon();
    void failedCallIsLoggedAndFallsBack_data();
    void failedCallIsLoggedAndFallsBack();
    void everyFallbackKeepsItsProcessObject();
    void daemonThatComesBackIsAskedAgain();
    void propertyHoldsTheAnswerAtConstruction_data();
    void propertyHoldsTheAnswerAtConstruction();
    void fallbackWithABadToolIsFalseInTime_data();
    void fallbackWithABadToolIsFalseInTime();

private:
    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<MessageLog> m_log;
};

void TestShipMode::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    m_log = std::make_unique<MessageLog>();
}

void TestShipMode::cleanup()
{
    m_log.reset();
    m_tools.reset();
    SettingsFile::removeAll();
}

void TestShipMode::daemonsReplyOfTwoIsMilitary_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("none") << 0 << false;
    QTest::newRow("another") << 1 << false;
    QTest::newRow("military") << 2 << true;
    QTest::newRow("unknown") << 3 << false;
    QTest::newRow("negative") << -2 << false;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << false;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << false;
}

void TestShipMode::daemonsReplyOfTwoIsMilitary()
{
    QFETCH(int, mode);
    QFETCH(bool, isMilitary);
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(daemon.setShip(mode));
    QVERIFY(daemon.clearCalls());
    // The opposite, so that a look into the boot-loader environment would show.
    m_tools->setOutput(tool, isMilitary ? "0\n" : "2\n");
    m_log->clear();

    QCOMPARE(settings.isMilitaryShipped(), isMilitary);
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
    QCOMPARE(processNames(settings), QStringList{QStringLiteral("timedatectl")});
    const QVector<UtilityDaemon::Call> calls = daemon.calls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().method, QStringLiteral("getShip"));
    QCOMPARE(calls.first().signature, QString());
    QCOMPARE(calls.first().arguments, QVariantList());
}

void TestShipMode::replyOfAnyBasicTypeIsConverted_data()
{
    QTest::addColumn<QVariantList>("reply");
    QTest::addColumn<QString>("signature");
    QTest::addColumn<bool>("isMilitary");
    const auto row = [](const char *name, const QVariant &reply, const char *signature, bool isMilitary) {
        QTest::newRow(name) << QVariantList{reply} << QString::fromLatin1(signature) << isMilitary;
    };
    row("byte 2", QVariant::fromValue<uchar>(2), "y", true);
    row("byte 3", QVariant::fromValue<uchar>(3), "y", false);
    row("int16 2", QVariant::fromValue<short>(2), "n", true);
    row("int16 -2", QVariant::fromValue<short>(-2), "n", false);
    row("uint16 2", QVariant::fromValue<ushort>(2), "q", true);
    row("uint16 65534", QVariant::fromValue<ushort>(65534), "q", false);
    row("int32 2", 2, "i", true);
    row("uint32 2", 2u, "u", true);
    row("uint32, largest", std::numeric_limits<uint>::max(), "u", false);
    row("int64 2", Q_INT64_C(2), "x", true);
    row("int64, two beyond 32 bits", Q_INT64_C(0x100000002), "x", false);
    row("uint64 2", Q_UINT64_C(2), "t", true);
    row("uint64, two beyond 32 bits", Q_UINT64_C(0x100000002), "t", false);
    row("double 2", 2.0, "d", true);
    row("double 3", 3.0, "d", false);
    row("double that rounds up to 2", 1.5, "d", true);
    row("double that rounds down to 2", 2.4, "d", true);
    row("double that rounds up to 3", 2.5, "d", false);
    row("double that rounds down to 1", 1.4, "d", false);
    row("bool true", true, "b", false);
    row("bool false", false, "b", false);
    row("text 2", QStringLiteral("2"), "s", true);
    row("text 2 with white space", QStringLiteral(" 2\n"), "s", true);
    row("text 1", QStringLiteral("1"), "s", false);
    row("empty text", QString(), "s", false);
    row("word", QStringLiteral("military"), "s", false);
    row("object path", QVariant::fromValue(QDBusObjectPath(QStringLiteral("/2"))), "o", false);
    row("signature", QVariant::fromValue(QDBusSignature(QStringLiteral("i"))), "g", false);
    row("file descriptor", QVariant::fromValue(QDBusUnixFileDescriptor(0)), "h", false);
    row("list", QStringList{QStringLiteral("2")}, "as", false);
    row("bytes", QByteArray("x"), "ay", false);
    row("variant that holds 2, no basic type", QVariant::fromValue(QDBusVariant(2)), "v", false);
    row("map", QVariantMap{{QStringLiteral("2"), 2}}, "a{sv}", false);
    QTest::newRow("nothing") << QVariantList() << QString() << false;
    QTest::newRow("two values") << QVariantList{2, 0} << QStringLiteral("ii") << true;
}

void TestShipMode::replyOfAnyBasicTypeIsConverted()
{
    QFETCH(QVariantList, reply);
    QFETCH(QString, signature);
    QFETCH(bool, isMilitary);
    m_tools->setOutput(tool, isMilitary ? "0\n" : "2\n");
    const FakeUtilityDaemon daemon([&](const QDBusMessage &call) {
        return call.member() == QLatin1String("getShip") ? call.createReply(reply)
                                                         : call.createReply(QVariant(true));
    });
    QVERIFY(daemon.isOnTheBus());
    // That the row says what it means.
    const QDBusMessage answer = UtilityDaemon::call(QStringLiteral("getShip"));
    QCOMPARE(answer.signature(), signature);

    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    m_log->clear();
    QCOMPARE(settings.isMilitaryShipped(), isMilitary);
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
}

void TestShipMode::lateReplyIsWaitedFor()
{
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(daemon.setShip(2));
    QVERIFY(daemon.delayNextCall(1500));
    m_log->clear();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(settings.isMilitaryShipped());
    QVERIFY2(timer.elapsed() >= 1500 && timer.elapsed() <= 1500 + loadTime,
             QByteArray::number(timer.elapsed()).constData());
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
}

void TestShipMode::bootLoaderDecidesWithoutTheDaemon_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("military") << QByteArray("2\n") << true;
    QTest::newRow("no line end") << QByteArray("2") << true;
    QTest::newRow("white space around") << QByteArray(" \t2 \r\n\n") << true;
    QTest::newRow("NUL byte ends it") << QByteArray("2\0 and more", 11) << true;
    QTest::newRow("another") << QByteArray("1\n") << false;
    QTest::newRow("none") << QByteArray("0\n") << false;
    QTest::newRow("negative") << QByteArray("-2\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("line end alone") << QByteArray("\n") << false;
    QTest::newRow("NUL byte first") << QByteArray("\0"
                                                  "2\n",
                                                  3)
                                    << false;
    QTest::newRow("word") << QByteArray("military\n") << false;
    QTest::newRow("number and word") << QByteArray("2 military\n") << false;
    QTest::newRow("no UTF-8") << QByteArray("2\xff\n") << false;
    QTest::newRow("two beyond 32 bits") << QByteArray("4294967298\n") << false;
}

void TestShipMode::bootLoaderDecidesWithoutTheDaemon()
{
    QFETCH(QByteArray, output);
    QFETCH(bool, isMilitary);
    m_tools->setOutput(tool, output);
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    QCOMPARE(settings.isMilitaryShipped(), isMilitary);
    QCOMPARE(m_tools->commands(), QList<QStringList>({fallback, fallback}));
    QCOMPARE(m_tools->runs().first().standardInput, QByteArray("pipe"));
}

void TestShipMode::failedCallIsLoggedAndFallsBack_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");
    QTest::newRow("absent") << QStringLiteral("absent")
                            << QStringLiteral("DBus Reply(getShip) is inValid  QDBusError("
                                              "\"org.freedesktop.DBus.Error.ServiceUnknown\", \"The name "
                                              "com.corvanta.zbutility was not provided by any .service "
                                              "files\")");
    QTest::newRow("failing") << QStringLiteral("failing")
                             << QStringLiteral("DBus Reply(getShip) is inValid  QDBusError("
                                               "\"com.example.Broken\", \"on purpose\")");
    QTest::newRow("dying") << QStringLiteral("dying")
                           << QStringLiteral("DBus Reply(getShip) is inValid  QDBusError("
                                             "\"org.freedesktop.DBus.Error.NoReply\", \"Message recipient "
                                             "disconnected from message bus without replying\")");
}

void TestShipMode::failedCallIsLoggedAndFallsBack()
{
    QFETCH(QString, fault);
    QFETCH(QString, message);
    m_tools->setOutput(tool, "2\n");
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    ZBSettingsMain settings(nullptr, false);
    const EmissionRecorder recorder(&settings);
    if (fault == QLatin1String("absent"))
        QVERIFY2(daemon.terminate(), qPrintable(daemon.errorText()));
    else if (fault == QLatin1String("failing"))
        QVERIFY(daemon.failNextCall(QStringLiteral("com.example.Broken"), QStringLiteral("on purpose")));
    else
        QVERIFY(daemon.dieInNextCall());
    m_log->clear();

    QVERIFY(settings.isMilitaryShipped());
    QCOMPARE(m_tools->commands(), QList<QStringList>({fallback}));
    const QVector<MessageLog::Message> messages = m_log->messages();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(messages.first().text, message);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(false));
    QCOMPARE(recorder.names(), QStringList());
    QVERIFY(!SettingsFile::exists());
}

void TestShipMode::everyFallbackKeepsItsProcessObject()
{
    ZBSettingsMain settings(nullptr, false);
    QStringList names{QStringLiteral("timedatectl"), tool};
    QCOMPARE(processNames(settings), names);
    for (int i = 0; i < 3; ++i) {
        settings.isMilitaryShipped();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        names.append(tool);
        QCOMPARE(processNames(settings), names);
        QCOMPARE(m_tools->runs().size(), i + 2);
    }
}

void TestShipMode::daemonThatComesBackIsAskedAgain()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(!settings.isMilitaryShipped());
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    QVERIFY(daemon.setShip(2));
    m_log->clear();
    m_tools->clear();
    QVERIFY(settings.isMilitaryShipped());
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
}

void TestShipMode::propertyHoldsTheAnswerAtConstruction_data()
{
    QTest::addColumn<bool>("hasDaemon");
    QTest::newRow("from the daemon") << true;
    QTest::newRow("from the boot loader") << false;
}

void TestShipMode::propertyHoldsTheAnswerAtConstruction()
{
    QFETCH(bool, hasDaemon);
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    QVERIFY(daemon.setShip(2));
    m_tools->setOutput(tool, "2\n");
    if (!hasDaemon)
        QVERIFY(daemon.terminate());
    ZBSettingsMain settings(nullptr, false);
    const EmissionRecorder recorder(&settings);
    if (hasDaemon)
        QVERIFY(daemon.setShip(0));
    m_tools->setOutput(tool, "0\n");
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(true));
    QVERIFY(!settings.isMilitaryShipped());
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(true));
    QCOMPARE(recorder.names(), QStringList());
}

void TestShipMode::fallbackWithABadToolIsFalseInTime_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("missing") << QStringLiteral("missing") << false;
    QTest::newRow("not a program") << QStringLiteral("not a program") << false;
    QTest::newRow("failing") << QStringLiteral("failing") << false;
    QTest::newRow("crashing") << QStringLiteral("crashing") << false;
    QTest::newRow("hanging") << QStringLiteral("hanging") << false;
    QTest::newRow("hanging after its answer") << QStringLiteral("hanging after its answer") << true;
    QTest::newRow("answering too late") << QStringLiteral("answering too late") << false;
    QTest::newRow("10 MB") << QStringLiteral("10 MB") << false;
    QTest::newRow("output for ever") << QStringLiteral("output for ever") << false;
}

void TestShipMode::fallbackWithABadToolIsFalseInTime()
{
    QFETCH(QString, fault);
    QFETCH(bool, isMilitary);
    ZBSettingsMain settings(nullptr, false);
    if (fault == QLatin1String("missing"))
        m_tools->remove(tool);
    else if (fault == QLatin1String("not a program"))
        m_tools->breakProgram(tool);
    else if (fault == QLatin1String("failing"))
        m_tools->setSteps(tool, {RecordingTools::complain(100), RecordingTools::exitWith(1)});
    else if (fault == QLatin1String("crashing"))
        m_tools->setSteps(tool, {RecordingTools::crash()});
    else if (fault == QLatin1String("hanging"))
        m_tools->setSteps(tool, {RecordingTools::stay()});
    else if (fault == QLatin1String("hanging after its answer"))
        m_tools->setOutput(tool, "2\n", {RecordingTools::print(), RecordingTools::stay()});
    else if (fault == QLatin1String("answering too late"))
        m_tools->setOutput(tool, "2\n", {RecordingTools::pauseFor(2000), RecordingTools::print()});
    else if (fault == QLatin1String("10 MB"))
        m_tools->setOutput(tool, QByteArray(10 * 1024 * 1024, '2'));
    else
        m_tools->setSteps(tool, {RecordingTools::printForever()});
    QVERIFY(m_tools->isReady());

    bool answer = !isMilitary;
    const auto attempt = [&] {
        QElapsedTimer timer;
        timer.start();
        answer = settings.isMilitaryShipped();
        return timer.elapsed();
    };
    const bool isForEver = fault == QLatin1String("output for ever");
    const QByteArray complaint = complaintAbout(attempt, isForEver ? oneWaitAndMegabytes : oneWait);
    QCOMPARE(answer, isMilitary);
    QVERIFY2(complaint.isEmpty(), complaint.constData());
}

QTEST_GUILESS_MAIN(TestShipMode)
#include "tst_shipmode.moc"
