// What setSetting() tells the utility daemon: which call, with which type on the wire, and what is logged and
// kept when the daemon is there, is not there, refuses, is late or dies in the call.
#include "emissionrecorder.h"
#include "fakeutilitydaemon.h"
#include "messagelog.h"
#include "settingsfile.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <memory>

namespace {

constexpr uint latenessMilliseconds = 300;

struct Notification
{
    QString key;
    QString method;
    QString failureText;
};

/// One value that is set, and what then stands in the file and on the wire.
struct Row
{
    QByteArray name;
    Notification notification;
    QVariant value;
    QByteArray stored; ///< the key's line in the file
    QString signature; ///< D-Bus type on the wire
    QVariant argument;
    bool isAccepted; ///< by a daemon that is well
};

enum class Way { Present, Absent, Error, Late, Dying };

QVector<Row> rows()
{
    const QString text = QStringLiteral("text");
    const QStringList list{QStringLiteral("a"), QStringLiteral("b")};
    const Notification dim{QStringLiteral("dimmingInactive"), QStringLiteral("setDisplayDimTime"),
                           QStringLiteral("DBus Reply(setDisplayDimTime) is inValid ")};
    const Notification power{QStringLiteral("powerInactive"), QStringLiteral("setDisplayPowerOffTime"),
                             QStringLiteral("DBus Reply(setDisplayPowerOffTime) is inValid ")};
    const Notification brightness{QStringLiteral("brightnessLevel"), QStringLiteral("setDisplayBrightness"),
                                  QStringLiteral("DBus Reply(setDisplayBrightness) is inValid ")};
    const Notification update{QStringLiteral("automaticUpdateCheck"),
                              QStringLiteral("setAutomaticUpdateCheck"),
                              QStringLiteral("DBus Reply(setAutomaticUpdateCheck) is inValid ")};
    const Notification clock{QStringLiteral("24Hour"), QStringLiteral("setTwentyFourHourMode"),
                             QStringLiteral("DBus Reply(setTwentyFourHourMode) is inValid ")};
    const Notification date{QStringLiteral("dateFormat"), QStringLiteral("setDateFormat"),
                            QStringLiteral("Dbus Reply(setDateFormat) is inValid ")};
    const QString i = QStringLiteral("i");
    const QString u = QStringLiteral("u");
    const QString b = QStringLiteral("b");
    const QString s = QStringLiteral("s");
    return {
        {"dim, int", dim, 5, "dimmingInactive=5", i, 5, true},
        {"dim, text", dim, QStringLiteral("5"), "dimmingInactive=5", i, 5, true},
        {"dim, uint", dim, 5u, "dimmingInactive=5", i, 5, true},
        {"dim, double", dim, 4.6, "dimmingInactive=4.6", i, 5, true},
        {"dim, bool", dim, true, "dimmingInactive=true", i, 1, true},
        {"dim, words", dim, text, "dimmingInactive=text", i, 0, true},
        {"dim, list", dim, list, "dimmingInactive=a, b", i, 0, true},
        {"dim, nothing", dim, QVariant(), "dimmingInactive=@Invalid()", i, 0, true},
        {"dim, out of range", dim, 12, "dimmingInactive=12", i, 12, false},
        {"dim, negative", dim, -1, "dimmingInactive=-1", i, -1, false},

        {"power, int", power, 11, "powerInactive=11", i, 11, true},
        {"power, text", power, QStringLiteral("11"), "powerInactive=11", i, 11, true},
        {"power, words", power, text, "powerInactive=text", i, 0, true},
        {"power, out of range", power, 12, "powerInactive=12", i, 12, false},
        {"power, negative", power, QStringLiteral("-7"), "powerInactive=-7", i, -7, false},

        {"brightness, int", brightness, 5, "brightnessLevel=5", u, 5u, true},
        {"brightness, text", brightness, QStringLiteral("5"), "brightnessLevel=5", u, 5u, true},
        {"brightness, lowest", brightness, 1u, "brightnessLevel=1", u, 1u, true},
        {"brightness, highest", brightness, 9.0, "brightnessLevel=9", u, 9u, true},
        {"brightness, too high", brightness, 10, "brightnessLevel=10", u, 10u, false},
        {"brightness, nought", brightness, 0, "brightnessLevel=0", u, 0u, false},
        {"brightness, negative", brightness, -1, "brightnessLevel=-1", u, 4294967295u, false},
        {"brightness, words", brightness, text, "brightnessLevel=text", u, 0u, false},
        {"brightness, nothing", brightness, QVariant(), "brightnessLevel=@Invalid()", u, 0u, false},

        {"update, true", update, true, "automaticUpdateCheck=true", b, true, true},
        {"update, false", update, false, "automaticUpdateCheck=false", b, false, true},
        {"update, text true", update, QStringLiteral("true"), "automaticUpdateCheck=true", b, true, true},
        {"update, text false", update, QStringLiteral("false"), "automaticUpdateCheck=false", b, false, true},
        {"update, text 0", update, QStringLiteral("0"), "automaticUpdateCheck=0", b, false, true},
        {"update, int", update, 1, "automaticUpdateCheck=1", b, true, true},
        {"update, words", update, text, "automaticUpdateCheck=text", b, true, true},
        {"update, list", update, list, "automaticUpdateCheck=a, b", b, false, true},
        {"update, nothing", update, QVariant(), "automaticUpdateCheck=@Invalid()", b, false, true},

        {"clock, true", clock, true, "24Hour=true", b, true, true},
        {"clock, false", clock, false, "24Hour=false", b, false, true},
        {"clock, text", clock, QStringLiteral("true"), "24Hour=true", s, QStringLiteral("true"), false},
        {"clock, int", clock, 1, "24Hour=1", i, 1, false},
        {"clock, uint", clock, 1u, "24Hour=1", u, 1u, false},
        {"clock, double", clock, 0.5, "24Hour=0.5", QStringLiteral("d"), 0.5, false},
        {"clock, list", clock, list, "24Hour=a, b", QStringLiteral("as"), list, false},

        {"date, text", date, QStringLiteral("dd.MM.yyyy"), "dateFormat=dd.MM.yyyy", s,
         QStringLiteral("dd.MM.yyyy"), true},
        {"date, commas", date, QStringLiteral("dd, MM, yyyy"), "dateFormat=\"dd, MM, yyyy\"", s,
         QStringLiteral("dd, MM, yyyy"), true},
        {"date, no format", date, QStringLiteral("rubbish"), "dateFormat=rubbish", s,
         QStringLiteral("rubbish"), false},
        {"date, empty", date, QStringLiteral(""), "dateFormat=", s, QStringLiteral(""), false},
        {"date, int", date, 5, "dateFormat=5", i, 5, false},
        {"date, bool", date, true, "dateFormat=true", b, true, false},
    };
}

const char *nameOf(Way way)
{
    switch (way) {
    case Way::Present:
        break;
    case Way::Absent:
        return "absent";
    case Way::Error:
        return "error";
    case Way::Late:
        return "late";
    case Way::Dying:
        return "dying";
    }
    return "present";
}

} // namespace

Q_DECLARE_METATYPE(Row)
Q_DECLARE_METATYPE(Way)

class TestNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void daemonIsToldAndTheValueIsKept_data();
    void daemonIsToldAndTheValueIsKept();
    void valueThatCannotBeSentIsKeptAndLogged_data();
    void valueThatCannotBeSentIsKeptAndLogged();
    void otherKeysAreNotTold_data();
    void otherKeysAreNotTold();
    void readingTellsNothing();
    void fileIsWrittenAfterTheAnswer();
    void answerOfAnyKindIsNoError();
    void nextCallAfterADeadDaemonIsKeptToo();
    void startedDaemonIsReachedByAnObjectThatHadNone();

private:
    void startDaemon();
    QStringList expectedLog(const Row &row, Way way) const;
    bool logIs(const QStringList &expected) const;

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<UtilityDaemon> m_daemon;
};

void TestNotifications::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
    m_daemon = std::make_unique<UtilityDaemon>();
}

void TestNotifications::cleanup()
{
    if (m_daemon && m_daemon->isRunning())
        m_daemon->kill();
    m_daemon.reset();
    m_log.reset();
    SettingsFile::removeAll();
}

void TestNotifications::startDaemon()
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
}

/// The messages that are expected, each as the start of its text.
QStringList TestNotifications::expectedLog(const Row &row, Way way) const
{
    const QString start = row.notification.failureText + QLatin1Char(' ');
    switch (way) {
    case Way::Absent:
        return {start
                + QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.ServiceUnknown\", \"The name "
                                 "com.corvanta.zbutility was not provided by any .service files\")")};
    case Way::Error:
        return {start + QStringLiteral("QDBusError(\"com.corvanta.Test.Error\", \"on purpose\")")};
    case Way::Dying:
        return {start + QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.NoReply\", \"")};
    case Way::Present:
    case Way::Late:
        break;
    }
    if (row.isAccepted)
        return {};
    return {start + QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.InvalidArgs\", \"")};
}

bool TestNotifications::logIs(const QStringList &expected) const
{
    const QVector<MessageLog::Message> messages = m_log->messages();
    if (messages.size() != expected.size())
        return false;
    for (int i = 0; i < expected.size(); ++i) {
        const MessageLog::Message &message = messages.at(i);
        if (message.type != QtDebugMsg || message.category != QLatin1String("default")
            || !message.text.startsWith(expected.at(i)) || !message.text.endsWith(QLatin1String("\")")))
            return false;
    }
    return true;
}

void TestNotifications::daemonIsToldAndTheValueIsKept_data()
{
    QTest::addColumn<Row>("row");
    QTest::addColumn<Way>("way");
    const QVector<Row> all = rows();
    QStringList inAllWays;
    for (const Row &row : all) {
        QTest::newRow(row.name + ", present") << row << Way::Present;
        // What goes wrong on the way does not depend on the value: one that the daemon takes and one that it
        // refuses.
        const QString kind = row.notification.key + QString::number(row.isAccepted);
        if (inAllWays.contains(kind))
            continue;
        inAllWays.append(kind);
        for (const Way way : {Way::Absent, Way::Error, Way::Late, Way::Dying})
            QTest::newRow(row.name + ", " + nameOf(way)) << row << way;
    }
}

void TestNotifications::daemonIsToldAndTheValueIsKept()
{
    QFETCH(Row, row);
    QFETCH(Way, way);
    if (way != Way::Absent)
        startDaemon();
    ZBSettingsMain settings(nullptr, false);
    const EmissionRecorder recorder(&settings);
    if (way != Way::Absent)
        QVERIFY(m_daemon->clearCalls());
    if (way == Way::Error)
        QVERIFY(
            m_daemon->failNextCall(QStringLiteral("com.corvanta.Test.Error"), QStringLiteral("on purpose")));
    if (way == Way::Late)
        QVERIFY(m_daemon->delayNextCall(latenessMilliseconds));
    if (way == Way::Dying)
        QVERIFY(m_daemon->dieInNextCall());
    m_log->clear();

    QElapsedTimer timer;
    timer.start();
    settings.setSetting(row.notification.key, row.value);
    const qint64 elapsed = timer.elapsed();

    const QStringList expected = expectedLog(row, way);
    QVERIFY2(logIs(expected),
             qPrintable(m_log->texts().join(QLatin1Char('\n')) + QStringLiteral("\nand not\n")
                        + expected.join(QLatin1Char('\n'))));
    QVERIFY(SettingsFile::content().split('\n').contains(row.stored));
    QCOMPARE(recorder.names(), QStringList());
    if (way == Way::Late)
        QVERIFY2(elapsed >= latenessMilliseconds, qPrintable(QString::number(elapsed)));
    if (way == Way::Absent)
        QVERIFY2(elapsed < 10000, qPrintable(QString::number(elapsed)));
    if (way == Way::Dying)
        QVERIFY(m_daemon->waitForEnd());
    if (way == Way::Absent || way == Way::Dying)
        return;

    const QVector<UtilityDaemon::Call> calls = m_daemon->calls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().method, row.notification.method);
    QCOMPARE(calls.first().signature, row.signature);
    QCOMPARE(calls.first().arguments.size(), 1);
    QCOMPARE(calls.first().arguments.first().userType(), row.argument.userType());
    QCOMPARE(calls.first().arguments.first(), row.argument);
}

void TestNotifications::valueThatCannotBeSentIsKeptAndLogged_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("start");
    QTest::addColumn<bool>("isRunning");
    for (const bool isRunning : {true, false}) {
        const QByteArray suffix = isRunning ? ", present" : ", absent";
        QTest::newRow("24Hour" + suffix)
            << QStringLiteral("24Hour")
            << QStringLiteral("DBus Reply(setTwentyFourHourMode) is inValid  QDBusError(\"") << isRunning;
        QTest::newRow("dateFormat" + suffix)
            << QStringLiteral("dateFormat")
            << QStringLiteral("Dbus Reply(setDateFormat) is inValid  QDBusError(\"") << isRunning;
    }
}

// A value that holds nothing has no D-Bus type.
void TestNotifications::valueThatCannotBeSentIsKeptAndLogged()
{
    QFETCH(QString, key);
    QFETCH(QString, start);
    QFETCH(bool, isRunning);
    if (isRunning)
        startDaemon();
    ZBSettingsMain settings(nullptr, false);
    if (isRunning)
        QVERIFY(m_daemon->clearCalls());
    m_log->clear();
    settings.setSetting(key, QVariant());

    QStringList rowTexts;
    for (const QString &text : m_log->texts()) {
        if (text.startsWith(start))
            rowTexts.append(text);
    }
    QCOMPARE(rowTexts.size(), 1);
    QVERIFY(SettingsFile::content().contains(key.toLatin1() + "=@Invalid()\n"));
    if (isRunning)
        QCOMPARE(m_daemon->calls().size(), 0);
}

void TestNotifications::otherKeysAreNotTold_data()
{
    QTest::addColumn<QString>("key");
    for (const char *const key :
         {"language", "units", "keyboardLayout", "sendAnalytics", "mountSharedFolder", "timezone",
          "automaticDateTime", "lastUpdateCheck", "firstBootApplication", "firstBootDefaultPage",
          "lockscreenAuto", "zoomLevel", "appListCollapsed", "doubleClickOpen", "appFirstLaunchList"})
        QTest::newRow(key) << QString::fromLatin1(key);
}

void TestNotifications::otherKeysAreNotTold()
{
    QFETCH(QString, key);
    startDaemon();
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(m_daemon->clearCalls());
    m_log->clear();
    settings.setSetting(key, 1);
    QCOMPARE(m_daemon->calls().size(), 0);
    QCOMPARE(m_log->texts(), QStringList());
    QVERIFY(SettingsFile::content().contains(key.toLatin1() + "=1\n"));
}

void TestNotifications::readingTellsNothing()
{
    startDaemon();
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(m_daemon->clearCalls());
    m_log->clear();
    for (const Row &row : rows())
        settings.getSetting(row.notification.key, row.value);
    QCOMPARE(m_daemon->calls().size(), 0);
    QCOMPARE(m_log->texts(), QStringList());
}

// Other programs that follow the daemon read the file when they hear from it: what they find then is the old
// value.
void TestNotifications::fileIsWrittenAfterTheAnswer()
{
    QByteArray contentInCall;
    const FakeUtilityDaemon daemon([&contentInCall](const QDBusMessage &call) {
        if (call.member() == QLatin1String("setDisplayBrightness"))
            contentInCall = SettingsFile::content();
        return call.createReply(QVariant(false));
    });
    QVERIFY(daemon.isOnTheBus());
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=3\n"));
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("brightnessLevel"), 5);
    QCOMPARE(contentInCall, QByteArray("[display]\nbrightnessLevel=3\n"));
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=5\n"));
}

void TestNotifications::answerOfAnyKindIsNoError()
{
    const FakeUtilityDaemon daemon([](const QDBusMessage &call) {
        return call.createReply({QStringLiteral("unexpected"), 1});
    });
    QVERIFY(daemon.isOnTheBus());
    ZBSettingsMain settings(nullptr, false);
    m_log->clear();
    for (const Row &row : rows())
        settings.setSetting(row.notification.key, row.value);
    QCOMPARE(m_log->texts(), QStringList());
    QVERIFY(SettingsFile::content().contains("brightnessLevel=@Invalid()\n"));
}

void TestNotifications::nextCallAfterADeadDaemonIsKeptToo()
{
    startDaemon();
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(m_daemon->kill());
    m_log->clear();
    settings.setSetting(QStringLiteral("brightnessLevel"), 5);
    settings.setSetting(QStringLiteral("dateFormat"), QStringLiteral("dd.MM.yy"));
    QCOMPARE(m_log->texts().size(), 2);
    QVERIFY(m_log->texts().at(0).startsWith(
        QLatin1String("DBus Reply(setDisplayBrightness) is inValid  "
                      "QDBusError(\"org.freedesktop.DBus.Error.ServiceUnknown\"")));
    QVERIFY(m_log->texts().at(1).startsWith(QLatin1String(
        "Dbus Reply(setDateFormat) is inValid  QDBusError(\"org.freedesktop.DBus.Error.ServiceUnknown\"")));
    QCOMPARE(SettingsFile::content(),
             QByteArray("[dateTime]\ndateFormat=dd.MM.yy\n\n[display]\nbrightnessLevel=5\n"));
}

void TestNotifications::startedDaemonIsReachedByAnObjectThatHadNone()
{
    ZBSettingsMain settings(nullptr, false);
    startDaemon();
    m_log->clear();
    settings.setSetting(QStringLiteral("brightnessLevel"), 5);
    QCOMPARE(m_log->texts(), QStringList());
    const QVector<UtilityDaemon::Call> calls = m_daemon->calls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().method, QStringLiteral("setDisplayBrightness"));
    QCOMPARE(calls.first().signature, QStringLiteral("u"));
}

QTEST_GUILESS_MAIN(TestNotifications)
#include "tst_notifications.moc"
