// The daemon's own interface, method by method, over a real bus.
#include "statefile.h"
#include "utilitydaemon.h"

#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusReply>
#include <QtTest/QtTest>

#include <climits>

class DaemonMethodsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyGoodValueIsAcceptedAndKept_data();
    void everyGoodValueIsAcceptedAndKept();
    void valuesOutsideTheRangeAreRefusedAndChangeNothing_data();
    void valuesOutsideTheRangeAreRefusedAndChangeNothing();
    void wrongTypesAreRefusedAndChangeNothing_data();
    void wrongTypesAreRefusedAndChangeNothing();
    void shipModeIsZeroUntilItIsSet();
    void anUnknownMethodIsAnError();
    void aCallThatNamesNoInterfaceIsForTheOwnOne();
    void aCallThatWantsNoReplyIsDone();
    void thereAreNoPropertiesAndThatIsNoError();
    void introspectionHasTheOwnInterface();
    void introspectionIsThatOfTheXmlFiles();
    void controlInterfaceIsAbsentWithoutTheOption();

private:
    std::unique_ptr<UtilityDaemon> m_daemon;
};

namespace {

const char *const invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";

QDBusMessage callInterface(const QString &interface, const QString &method,
                           const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.corvanta.zbutility"),
                                                          QStringLiteral("/"), interface, method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message);
}

QString introspection()
{
    return QDBusReply<QString>(callInterface(QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                             QStringLiteral("Introspect")))
        .value();
}

/// One line a method, signal and argument of the interfaces whose name does not start with "org.freedesktop".
QStringList membersOf(const QString &xml)
{
    QStringList members;
    QString interface;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attribute = [&reader](const char *name) {
            return reader.attributes().value(QLatin1String(name)).toString();
        };
        if (reader.name() == QLatin1String("interface"))
            interface = attribute("name");
        if (interface.startsWith(QLatin1String("org.freedesktop")))
            continue;
        if (reader.name() == QLatin1String("method") || reader.name() == QLatin1String("signal"))
            members += interface + QLatin1Char(' ') + reader.name() + QLatin1Char(' ') + attribute("name");
        if (reader.name() == QLatin1String("arg"))
            members.last() += QLatin1Char(' ') + attribute("direction") + QLatin1Char(':') + attribute("type")
                + QLatin1Char(':') + attribute("name");
    }
    return members;
}

QString fileText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

void DaemonMethodsTest::init()
{
    m_daemon = std::make_unique<UtilityDaemon>();
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
}

void DaemonMethodsTest::cleanup()
{
    QVERIFY2(m_daemon->terminate(), qPrintable(m_daemon->errorText()));
    QCOMPARE(m_daemon->exitCode(), 0);
    m_daemon.reset();
}

void DaemonMethodsTest::everyGoodValueIsAcceptedAndKept_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariant>("argument");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QJsonValue>("kept");
    for (int choice = 0; choice <= 11; ++choice) {
        QTest::addRow("dim time %d", choice) << QStringLiteral("setDisplayDimTime") << QVariant(choice)
                                             << QStringLiteral("displayDimTime") << QJsonValue(choice);
        QTest::addRow("power off time %d", choice)
            << QStringLiteral("setDisplayPowerOffTime") << QVariant(choice)
            << QStringLiteral("displayPowerOffTime") << QJsonValue(choice);
    }
    for (uint level = 1; level <= 9; ++level)
        QTest::addRow("brightness %u", level)
            << QStringLiteral("setDisplayBrightness") << QVariant(level)
            << QStringLiteral("displayBrightness") << QJsonValue(int(level));
    for (const bool flag : {false, true}) {
        const char *const name = flag ? "on" : "off";
        QTest::addRow("update check %s", name) << QStringLiteral("setAutomaticUpdateCheck") << QVariant(flag)
                                               << QStringLiteral("automaticUpdateCheck") << QJsonValue(flag);
        QTest::addRow("24 hours %s", name) << QStringLiteral("setTwentyFourHourMode") << QVariant(flag)
                                           << QStringLiteral("twentyFourHourMode") << QJsonValue(flag);
    }
    const QString month = QStringLiteral("MM/dd/yy");
    const QString names = QStringLiteral("dddd, d MMMM yyyy");
    QTest::newRow("date format") << QStringLiteral("setDateFormat") << QVariant(month)
                                 << QStringLiteral("dateFormat") << QJsonValue(month);
    QTest::newRow("date format with names") << QStringLiteral("setDateFormat") << QVariant(names)
                                            << QStringLiteral("dateFormat") << QJsonValue(names);
}

void DaemonMethodsTest::everyGoodValueIsAcceptedAndKept()
{
    QFETCH(QString, method);
    QFETCH(QVariant, argument);
    QFETCH(QString, name);
    const QDBusMessage reply = UtilityDaemon::call(method, {argument});
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
    QVERIFY(reply.arguments().isEmpty());
    QTEST(stateObject(m_daemon->stateDirectory()).value(name), "kept");
}

void DaemonMethodsTest::valuesOutsideTheRangeAreRefusedAndChangeNothing_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariant>("argument");
    QTest::addColumn<QString>("text");
    for (const char *const method : {"setDisplayDimTime", "setDisplayPowerOffTime"}) {
        for (const int choice : {-1, 12, INT_MIN, INT_MAX})
            QTest::addRow("%s %d", method, choice)
                << QString::fromLatin1(method) << QVariant(choice)
                << QStringLiteral("the time is the index of a choice, 0 to 11, not %1").arg(choice);
    }
    for (const uint level : {0U, 10U, UINT_MAX})
        QTest::addRow("setDisplayBrightness %u", level)
            << QStringLiteral("setDisplayBrightness") << QVariant(level)
            << QStringLiteral("the brightness is 1 to 9, not %1").arg(level);
    const QString setDateFormat = QStringLiteral("setDateFormat");
    QTest::newRow("no date format") << setDateFormat << QVariant(QString())
                                    << QStringLiteral("the date format is empty");
    QTest::newRow("a long date format") << setDateFormat << QVariant(QString(33, QLatin1Char('d')))
                                        << QStringLiteral("the date format is longer than 32 characters");
    QTest::newRow("a date format without year")
        << setDateFormat << QVariant(QStringLiteral("MM/dd"))
        << QStringLiteral("the date format lacks the day of the month, the month or the year");
    QTest::newRow("a date format with a time") << setDateFormat << QVariant(QStringLiteral("MM/dd/yy hh"))
                                               << QStringLiteral("the date format may not contain \"hh\"");
}

void DaemonMethodsTest::valuesOutsideTheRangeAreRefusedAndChangeNothing()
{
    QFETCH(QString, method);
    QFETCH(QVariant, argument);
    QVERIFY(m_daemon->setShip(1));
    const QByteArray before = stateText(m_daemon->stateDirectory());
    QVERIFY(!before.isEmpty());

    const QDBusMessage reply = UtilityDaemon::call(method, {argument});
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), QLatin1String(invalidArguments));
    QTEST(reply.errorMessage(), "text");
    QCOMPARE(stateText(m_daemon->stateDirectory()), before);

    // The refused value does not come out with the next good one either.
    QCOMPARE(UtilityDaemon::call(QStringLiteral("setAutomaticUpdateCheck"), {true}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(stateText(m_daemon->stateDirectory()), before);
}

void DaemonMethodsTest::wrongTypesAreRefusedAndChangeNothing_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *method, const QVariantList &arguments, const char *expected,
                        const char *given) {
        QTest::addRow("%s(%s)", method, given)
            << QString::fromLatin1(method) << arguments
            << QStringLiteral("%1 takes arguments of the types \"%2\", not \"%3\"")
                   .arg(QLatin1String(method), QLatin1String(expected), QLatin1String(given));
    };
    row("setDisplayDimTime", {2U}, "i", "u");
    row("setDisplayDimTime", {QStringLiteral("2")}, "i", "s");
    row("setDisplayPowerOffTime", {2.0}, "i", "d");
    row("setDisplayPowerOffTime", {qlonglong(2)}, "i", "x");
    row("setDisplayBrightness", {5}, "u", "i");
    row("setDisplayBrightness", {QStringLiteral("5")}, "u", "s");
    row("setDisplayBrightness", {}, "u", "");
    row("setDisplayBrightness", {5U, 5U}, "u", "uu");
    row("setAutomaticUpdateCheck", {1}, "b", "i");
    row("setTwentyFourHourMode", {QStringLiteral("true")}, "b", "s");
    row("setTwentyFourHourMode", {QVariant::fromValue(QDBusVariant(true))}, "b", "v");
    row("setDateFormat", {QStringList{QStringLiteral("MM/dd/yy")}}, "s", "as");
    row("setDateFormat", {QByteArray("MM/dd/yy")}, "s", "ay");
    row("getInternetConnection", {true}, "", "b");
    row("checkInternetConnection", {QString()}, "", "s");
    row("getShip", {2}, "", "i");
}

void DaemonMethodsTest::wrongTypesAreRefusedAndChangeNothing()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QSignalSpy told(m_daemon.get(), &UtilityDaemon::onInternetConnectionChanged);
    const QDBusMessage reply = UtilityDaemon::call(method, arguments);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), QLatin1String(invalidArguments));
    QTEST(reply.errorMessage(), "text");
    QVERIFY(stateText(m_daemon->stateDirectory()).isEmpty());
    // A signal would have come before the answer to this call.
    QVERIFY(m_daemon->clearCalls());
    QCoreApplication::processEvents();
    QVERIFY(told.isEmpty());
}

void DaemonMethodsTest::shipModeIsZeroUntilItIsSet()
{
    const auto ship = [] { return UtilityDaemon::call(QStringLiteral("getShip")); };
    QCOMPARE(ship().signature(), QStringLiteral("i"));
    QCOMPARE(ship().arguments(), QVariantList{0});
    for (const int mode : {2, -1, INT_MIN, INT_MAX}) {
        QVERIFY(m_daemon->setShip(mode));
        QCOMPARE(ship().arguments(), QVariantList{mode});
    }
}

void DaemonMethodsTest::anUnknownMethodIsAnError()
{
    const QDBusMessage reply = UtilityDaemon::call(QStringLiteral("setdisplaybrightness"), {5U});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    QCOMPARE(reply.errorMessage(),
             QStringLiteral("local.ZBUtilityd.UtilityDaemon has no method setdisplaybrightness"));
    // The adaptors inherit slots from QObject, which are nobody's business.
    QCOMPARE(UtilityDaemon::call(QStringLiteral("deleteLater")).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    QCOMPARE(callInterface(QStringLiteral("com.example.Other"), QStringLiteral("getShip")).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"));
}

void DaemonMethodsTest::aCallThatNamesNoInterfaceIsForTheOwnOne()
{
    QVERIFY(m_daemon->setShip(2));
    QCOMPARE(callInterface(QString(), QStringLiteral("getShip")).arguments(), QVariantList{2});
    // Never for the control interface, since the rules of the bus tell the two apart by their names.
    QCOMPARE(callInterface(QString(), QStringLiteral("SetShip"), {3}).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(callInterface(QString(), QStringLiteral("getShip")).arguments(), QVariantList{2});
}

void DaemonMethodsTest::aCallThatWantsNoReplyIsDone()
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("com.corvanta.zbutility"), QStringLiteral("/"),
        QStringLiteral("local.ZBUtilityd.UtilityDaemon"), QStringLiteral("setDisplayBrightness"));
    message.setArguments({3U});
    QVERIFY(QDBusConnection::systemBus().send(message));
    QVERIFY2(m_daemon->waitForCalls(1), qPrintable(m_daemon->errorText()));
    QCOMPARE(stateObject(m_daemon->stateDirectory()).value(QStringLiteral("displayBrightness")),
             QJsonValue(3));
}

void DaemonMethodsTest::thereAreNoPropertiesAndThatIsNoError()
{
    const QDBusMessage reply =
        callInterface(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"),
                      {QStringLiteral("local.ZBUtilityd.UtilityDaemon")});
    QCOMPARE(reply.signature(), QStringLiteral("a{sv}"));
    QVERIFY(qdbus_cast<QVariantMap>(reply.arguments().constFirst()).isEmpty());
    QCOMPARE(callInterface(QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")).type(),
             QDBusMessage::ReplyMessage);
}

void DaemonMethodsTest::introspectionHasTheOwnInterface()
{
    QStringList members = membersOf(introspection());
    members = members.filter(QRegularExpression(QStringLiteral("^local\\.")));
    const QString own = QStringLiteral("local.ZBUtilityd.UtilityDaemon ");
    const QStringList expected{
        own + QStringLiteral("method setDisplayDimTime in:i:choice"),
        own + QStringLiteral("method setDisplayPowerOffTime in:i:choice"),
        own + QStringLiteral("method setDisplayBrightness in:u:level"),
        own + QStringLiteral("method setAutomaticUpdateCheck in:b:enabled"),
        own + QStringLiteral("method setTwentyFourHourMode in:b:enabled"),
        own + QStringLiteral("method setDateFormat in:s:format"),
        own + QStringLiteral("method getInternetConnection out:b:connected"),
        own + QStringLiteral("method checkInternetConnection"),
        own + QStringLiteral("method getShip out:i:mode"),
        own + QStringLiteral("signal onInternetConnectionChanged :b:connected"),
    };
    QCOMPARE(members, expected);
}

void DaemonMethodsTest::introspectionIsThatOfTheXmlFiles()
{
    const QString directory = QStringLiteral(DBUS_SOURCE_DIRECTORY);
    const QStringList expected =
        membersOf(fileText(directory + QStringLiteral("/com.corvanta.zbutility.xml")))
        + membersOf(fileText(directory + QStringLiteral("/com.corvanta.VirtualDevice1.xml")));
    QCOMPARE(expected.size(), 10 + 11);
    QCOMPARE(membersOf(introspection()), expected);
}

void DaemonMethodsTest::controlInterfaceIsAbsentWithoutTheOption()
{
    QVERIFY(m_daemon->terminate());
    QVERIFY2(m_daemon->start({}), qPrintable(m_daemon->errorText()));
    QVERIFY(!introspection().contains(QLatin1String("VirtualDevice")));
    QVERIFY(introspection().contains(QLatin1String("local.ZBUtilityd.UtilityDaemon")));
    QCOMPARE(callInterface(QStringLiteral("com.corvanta.VirtualDevice1"), QStringLiteral("SetShip"), {2})
                 .errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"));
    QCOMPARE(UtilityDaemon::call(QStringLiteral("getShip")).arguments(), QVariantList{0});
    // The own interface works all the same.
    QCOMPARE(UtilityDaemon::call(QStringLiteral("setDisplayBrightness"), {5U}).type(),
             QDBusMessage::ReplyMessage);
}

QTEST_GUILESS_MAIN(DaemonMethodsTest)
#include "tst_daemonmethods.moc"
