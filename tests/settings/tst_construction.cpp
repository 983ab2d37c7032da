// The order in which a ZBSettingsMain is put together, as its surroundings see it.
//
// This program has a ZBLocaleLanguages of its own, which stands before the device's, and a utility daemon
// that notes when it is asked. Both change the settings file when they are called, so that the moment at
// which the settings are read shows in the properties.
#include "emissionrecorder.h"
#include "fakeutilitydaemon.h"
#include "settingsfile.h"
#include "zblocalelanguages.h"
#include "zbsettingsmain.h"

#include <QtCore/QMutex>
#include <QtCore/QProcess>
#include <QtNetwork/QLocalServer>
#include <QtTest/QtTest>

namespace {

QMutex mutex;
QStringList events;

void note(const QString &event)
{
    const QMutexLocker locker(&mutex);
    events.append(event);
}

QStringList notedEvents()
{
    const QMutexLocker locker(&mutex);
    return events;
}

void noteMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    note(QStringLiteral("log: ") + text);
}

bool isChangingTheFile = false;

void changeFile(const QByteArray &language)
{
    if (isChangingTheFile)
        SettingsFile::write("[locale]\nlanguage=" + language + "\n");
}

} // namespace

struct ZBLocaleLanguages::Private
{
};

ZBLocaleLanguages::ZBLocaleLanguages(QObject *parent)
    : QObject(parent)
    , d(nullptr)
{
    note(parent ? QStringLiteral("locale with a parent") : QStringLiteral("locale"));
}

ZBLocaleLanguages::~ZBLocaleLanguages()
{
    delete d;
    note(QStringLiteral("end of locale"));
}

QString ZBLocaleLanguages::getLanguageCode(int) const
{
    return {};
}

int ZBLocaleLanguages::getCurrentLanguageId() const
{
    return 0;
}

QStringList ZBLocaleLanguages::getTrLanguageNamesList() const
{
    note(QStringLiteral("language names"));
    changeFile("languages");
    return {QStringLiteral("English"), QStringLiteral("German")};
}

QStringList ZBLocaleLanguages::getTranslatedKeyboardLayoutList() const
{
    note(QStringLiteral("layout names"));
    changeFile("layouts");
    return {QStringLiteral("English (US)"), QStringLiteral("French"), QStringLiteral("German")};
}

QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> ZBLocaleLanguages::getKeyboardLayoutInfo() const
{
    return {};
}

class TestConstruction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stepsFollowOneAnother();
    void settingsAreReadBetweenInternetStateAndLanguageLists();
    void listsAreFilledAtConstruction();
    void shipModeIsReadOnce_data();
    void shipModeIsReadOnce();
    void childrenAreServerAndClockProcess_data();
    void childrenAreServerAndClockProcess();
    void localeGoesWithTheObject();

private:
    QDBusMessage answer(const QDBusMessage &call);

    QtMessageHandler m_handler = nullptr;
    QAtomicInt m_shipMode;
};

void TestConstruction::init()
{
    SettingsFile::removeAll();
    isChangingTheFile = false;
    m_shipMode = 0;
    events.clear();
}

void TestConstruction::cleanup()
{
    qInstallMessageHandler(m_handler);
    SettingsFile::removeAll();
}

QDBusMessage TestConstruction::answer(const QDBusMessage &call)
{
    note(call.member());
    changeFile(call.member().toLatin1());
    if (call.member() == QLatin1String("getInternetConnection"))
        return call.createReply(QVariant(true));
    return call.createReply(QVariant(m_shipMode.loadRelaxed()));
}

// The first in this process, since Qt asks for the introspection data of an interface only once in a process.
void TestConstruction::stepsFollowOneAnother()
{
    FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    daemon.noteIntrospection([] { note(QStringLiteral("interface")); });
    m_handler = qInstallMessageHandler(noteMessage);
    const ZBSettingsMain settings(nullptr, true);
    qInstallMessageHandler(m_handler);

    const QString socketPath = QDir::tempPath() + QLatin1Char('/') + QCoreApplication::applicationName();
    QCOMPARE(notedEvents(),
             QStringList({QStringLiteral("locale"), QStringLiteral("interface"),
                          QStringLiteral("log: QLocalServer Started Successfully on  \"%1\"").arg(socketPath),
                          QStringLiteral("getInternetConnection"), QStringLiteral("language names"),
                          QStringLiteral("layout names"), QStringLiteral("getShip")}));
}

void TestConstruction::settingsAreReadBetweenInternetStateAndLanguageLists()
{
    const FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    QVERIFY(SettingsFile::write("[locale]\nlanguage=start\n"));
    isChangingTheFile = true;
    const ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.settingLanguage(), QStringLiteral("getInternetConnection"));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=getShip\n"));
}

void TestConstruction::listsAreFilledAtConstruction()
{
    const FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    const ZBSettingsMain settings(nullptr, false);
    const QStringList languages{QStringLiteral("English"), QStringLiteral("German")};
    const QStringList layouts{QStringLiteral("English (US)"), QStringLiteral("French"),
                              QStringLiteral("German")};
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(settings.property("languagesComboBoxModel"), QVariant(languages));
        QCOMPARE(settings.property("keyboardLanguagesComboBoxModel"), QVariant(layouts));
    }
    QCOMPARE(notedEvents().count(QStringLiteral("language names")), 1);
    QCOMPARE(notedEvents().count(QStringLiteral("layout names")), 1);
}

void TestConstruction::shipModeIsReadOnce_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("none") << 0 << false;
    QTest::newRow("another") << 1 << false;
    QTest::newRow("military") << 2 << true;
    QTest::newRow("unknown") << 3 << false;
    QTest::newRow("negative") << -2 << false;
}

void TestConstruction::shipModeIsReadOnce()
{
    QFETCH(int, mode);
    QFETCH(bool, isMilitary);
    const FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    m_shipMode = mode;
    ZBSettingsMain settings(nullptr, false);
    const EmissionRecorder recorder(&settings);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    QCOMPARE(notedEvents().count(QStringLiteral("getShip")), 1);

    m_shipMode = isMilitary ? 0 : 2;
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    QCOMPARE(notedEvents().count(QStringLiteral("getShip")), 1);
    QCOMPARE(settings.isMilitaryShipped(), !isMilitary);
    QCOMPARE(settings.property("isMilitaryShipped"), QVariant(isMilitary));
    QCOMPARE(recorder.names(), QStringList());
}

void TestConstruction::childrenAreServerAndClockProcess_data()
{
    QTest::addColumn<bool>("flag");
    QTest::newRow("with the server") << true;
    QTest::newRow("without") << false;
}

void TestConstruction::childrenAreServerAndClockProcess()
{
    QFETCH(bool, flag);
    const FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    const ZBSettingsMain settings(nullptr, flag);
    QObjectList children = settings.children();
    if (flag)
        QVERIFY(qobject_cast<QLocalServer *>(children.takeFirst()));
    QCOMPARE(children.size(), 1);
    const QProcess *const clockProcess = qobject_cast<QProcess *>(children.first());
    QVERIFY(clockProcess);
    QCOMPARE(clockProcess->program(), QStringLiteral("timedatectl"));
    QCOMPARE(clockProcess->state(), QProcess::NotRunning);
}

void TestConstruction::localeGoesWithTheObject()
{
    const FakeUtilityDaemon daemon([this](const QDBusMessage &call) { return answer(call); });
    QVERIFY(daemon.isOnTheBus());
    {
        const ZBSettingsMain settings(nullptr, false);
        QVERIFY(!notedEvents().contains(QStringLiteral("end of locale")));
    }
    QCOMPARE(notedEvents().count(QStringLiteral("end of locale")), 1);
}

QTEST_GUILESS_MAIN(TestConstruction)
#include "tst_construction.moc"
