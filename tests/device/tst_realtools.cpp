// The About page, the calibration reset, the ship mode and the keyboard layout with the device's own tools,
// boot-loader environment and locale library.
#include "filebytes.h"
#include "keyboardenvironment.h"
#include "messagelog.h"
#include "systemtool.h"
#include "utilitydaemon.h"
#include "zbsettingsmain.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <memory>

namespace {

const QString imagePath = QStringLiteral("/var/lib/corvanta/boot-environment.bin");

bool setVariable(const char *name, const char *value)
{
    return runSystemTool(QStringLiteral("fw_setenv"), {QString::fromLatin1(name), QString::fromUtf8(value)});
}

bool deleteVariable(const char *name)
{
    return runSystemTool(QStringLiteral("fw_setenv"), {QString::fromLatin1(name)});
}

QByteArray variable(const char *name)
{
    return outputOfSystemTool(QStringLiteral("fw_printenv"),
                              {QStringLiteral("-n"), QString::fromLatin1(name)});
}

} // namespace

class TestRealTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void fieldIsWhatTheToolPrints_data();
    void fieldIsWhatTheToolPrints();
    void storageIsTheTableOfTheDisk();
    void valuesComeBackInTheOrderOfTheirNames();
    void missingOffsetIsAnEmptyField();
    void unreadableEnvironmentIsEmptyText_data();
    void unreadableEnvironmentIsEmptyText();
    void calibrationResetDeletesThreeAndLeavesTwo();
    void calibrationResetOfAbsentValuesChangesNothing();
    void shipModeComesFromTheEnvironmentWithoutTheDaemon_data();
    void shipModeComesFromTheEnvironmentWithoutTheDaemon();
    void daemonStandsBeforeTheEnvironment();
    void layoutOfTheListStandsInTheFile_data();
    void layoutOfTheListStandsInTheFile();

private:
    QByteArray m_image;
    std::unique_ptr<MessageLog> m_log; // without a daemon much is said
    std::unique_ptr<ZBSettingsMain> m_settings;
};

void TestRealTools::initTestCase()
{
    KeyboardEnvironment::folder();
    m_image = FileBytes::read(imagePath);
    QVERIFY(!m_image.isEmpty());
}

void TestRealTools::init()
{
    m_log = std::make_unique<MessageLog>();
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
}

void TestRealTools::cleanup()
{
    m_settings.reset();
    m_log.reset();
    FileBytes::write(imagePath, m_image);
}

void TestRealTools::fieldIsWhatTheToolPrints_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("form");
    const auto row = [](const char *name, int field, const char *command, const char *form) {
        QTest::newRow(name) << field << QString::fromLatin1(command).split(QLatin1Char(' '))
                            << QString::fromLatin1(form);
    };
    const char *const address = "^([0-9a-f]{2}:){5}[0-9a-f]{2}\n$";
    row("serial number", 0, "fw_printenv -n serialNumber", "^\\w+\n$");
    row("Ethernet address", 3, "fw_printenv -n ethaddr", address);
    row("wireless address", 4, "cat /sys/class/net/wlan0/address", address);
    row("offsets", 5,
        "fw_printenv -n backstop hOffset bMarkOffset gapOffset tphHeat backstop2 hOffset2 bMarkOffset2 "
        "gapOffset2 tphHeat2",
        "^(-?[0-9]+\n){10}$");
    row("calibration", 6, "fw_printenv -n tachLow tachHigh cutterTrans supplyTrans supplyRefl",
        "^([0-9]+\n){5}$");
}

void TestRealTools::fieldIsWhatTheToolPrints()
{
    QFETCH(int, field);
    QFETCH(QStringList, command);
    QFETCH(QString, form);
    const QString program = command.takeFirst();
    const QByteArray output = outputOfSystemTool(program, command);
    QVERIFY(!output.isEmpty());
    QCOMPARE(m_settings->getAboutInfo(field), QString::fromUtf8(output));
    QVERIFY2(QRegularExpression(form).match(QString::fromUtf8(output)).hasMatch(), output.constData());
}

void TestRealTools::storageIsTheTableOfTheDisk()
{
    // The disk is the machine's, where others may write meanwhile.
    const auto table = [] {
        return QString::fromUtf8(outputOfSystemTool(
            QStringLiteral("df"), {QStringLiteral("-t"), QStringLiteral("ext4"), QStringLiteral("-h")}));
    };
    QString before;
    QString value;
    QString after;
    for (int i = 0; i < 10; ++i) {
        before = table();
        value = m_settings->getAboutInfo(2);
        after = table();
        if (before == after)
            break;
    }
    QCOMPARE(value, after);
    if (value.isEmpty())
        QSKIP("no ext4 file system here");
    QVERIFY2(value.startsWith(QLatin1String("Filesystem      Size  Used Avail Use% Mounted on\n")),
             qPrintable(value));
}

void TestRealTools::valuesComeBackInTheOrderOfTheirNames()
{
    const char *const names[] = {"backstop",  "hOffset",  "bMarkOffset",  "gapOffset",  "tphHeat",
                                 "backstop2", "hOffset2", "bMarkOffset2", "gapOffset2", "tphHeat2"};
    int value = 0;
    for (const char *const name : names)
        QVERIFY(setVariable(name, QByteArray::number(++value).constData()));
    QCOMPARE(m_settings->formatOffsets(),
             QStringList({QStringLiteral("1, 2, 3, 4, 5"), QStringLiteral("6, 7, 8, 9, 10")}));

    QVERIFY(setVariable("tachLow", "11"));
    QVERIFY(setVariable("tachHigh", "12"));
    QVERIFY(setVariable("cutterTrans", "13"));
    QVERIFY(setVariable("supplyTrans", "14"));
    QVERIFY(setVariable("supplyRefl", "15"));
    QCOMPARE(m_settings->getAboutInfo(6), QStringLiteral("11\n12\n13\n14\n15\n"));

    QVERIFY(setVariable("serialNumber", "  Zwölf 12  "));
    QCOMPARE(m_settings->getAboutInfo(0), QStringLiteral("  Zwölf 12  \n"));
}

void TestRealTools::missingOffsetIsAnEmptyField()
{
    QVERIFY(setVariable("backstop", "1"));
    QVERIFY(setVariable("hOffset", "2"));
    QVERIFY(deleteVariable("bMarkOffset"));
    QVERIFY(setVariable("gapOffset", "4"));
    QVERIFY(deleteVariable("tphHeat"));
    QCOMPARE(m_settings->formatOffsets().value(0), QStringLiteral("1, 2, , 4, "));
}

void TestRealTools::unreadableEnvironmentIsEmptyText_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("wrong checksum") << QByteArray(16384, 'x');
}

void TestRealTools::unreadableEnvironmentIsEmptyText()
{
    QFETCH(QByteArray, image);
    QVERIFY(FileBytes::write(imagePath, image));
    m_log->clear();
    for (const int field : {0, 3, 5, 6})
        QCOMPARE(m_settings->getAboutInfo(field), QString());
    QCOMPARE(m_settings->formatOffsets(),
             QStringList({QStringLiteral(", , , , "), QStringLiteral(", , , , ")}));
    QCOMPARE(m_settings->getAboutInfo(1), QStringLiteral("3.1.1.11"));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestRealTools::calibrationResetDeletesThreeAndLeavesTwo()
{
    QVERIFY(setVariable("tachLow", "11"));
    QVERIFY(setVariable("tachHigh", "12"));
    for (const char *const name : {"cutterTrans", "supplyTrans", "supplyRefl"})
        QVERIFY(setVariable(name, "13"));
    m_settings->resetSupplyCalibration();
    QTRY_COMPARE(m_settings->getAboutInfo(6), QStringLiteral("11\n12\n\n\n\n"));
    for (const char *const name : {"cutterTrans", "supplyTrans", "supplyRefl"})
        QCOMPARE(variable(name), QByteArray("\n"));
    QCOMPARE(variable("tachLow"), QByteArray("11\n"));
    QCOMPARE(variable("tachHigh"), QByteArray("12\n"));
}

void TestRealTools::calibrationResetOfAbsentValuesChangesNothing()
{
    for (const char *const name : {"cutterTrans", "supplyTrans"})
        QVERIFY(deleteVariable(name));
    QVERIFY(setVariable("supplyRefl", "13"));
    QVERIFY(setVariable("tachLow", "11"));
    QVERIFY(setVariable("tachHigh", "12"));
    m_settings->resetSupplyCalibration();
    QTRY_COMPARE(m_settings->getAboutInfo(6), QStringLiteral("11\n12\n\n\n\n"));
}

void TestRealTools::shipModeComesFromTheEnvironmentWithoutTheDaemon_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<bool>("isMilitary");
    QTest::newRow("military") << QStringLiteral("2") << true;
    QTest::newRow("another") << QStringLiteral("1") << false;
    QTest::newRow("none") << QStringLiteral("0") << false;
    QTest::newRow("word") << QStringLiteral("military") << false;
    QTest::newRow("absent") << QString() << false;
}

void TestRealTools::shipModeComesFromTheEnvironmentWithoutTheDaemon()
{
    QFETCH(QString, mode);
    QFETCH(bool, isMilitary);
    if (mode.isEmpty())
        QVERIFY(deleteVariable("zbShip"));
    else
        QVERIFY(setVariable("zbShip", qPrintable(mode)));
    QCOMPARE(m_settings->isMilitaryShipped(), isMilitary);
    const ZBSettingsMain afresh(nullptr, false);
    QCOMPARE(afresh.property("isMilitaryShipped"), QVariant(isMilitary));
}

void TestRealTools::daemonStandsBeforeTheEnvironment()
{
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    QVERIFY(setVariable("zbShip", "2"));
    QVERIFY(daemon.setShip(1));
    QVERIFY(!m_settings->isMilitaryShipped());
    QVERIFY(setVariable("zbShip", "1"));
    QVERIFY(daemon.setShip(2));
    QVERIFY(m_settings->isMilitaryShipped());
    QVERIFY2(daemon.kill(), qPrintable(daemon.errorText()));
    QVERIFY(!m_settings->isMilitaryShipped());
}

void TestRealTools::layoutOfTheListStandsInTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("plain") << QStringLiteral("German")
                           << QByteArray("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=\n");
    QTest::newRow("variant") << QStringLiteral("English (Dvorak)")
                             << QByteArray("XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=dvorak\n");
    QTest::newRow("no such layout") << QString() << QByteArray("XKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n");
}

void TestRealTools::layoutOfTheListStandsInTheFile()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, lines);
    QVERIFY(KeyboardEnvironment::write(
        "XDG_SESSION_TYPE=wayland\nXKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=bepo\n"));
    const int index = m_settings->getKeyboardLanguageComboBoxModel().indexOf(name);
    QCOMPARE(index < 0, name.isEmpty());
    m_settings->setKeyboardLanguage(index);
    QCOMPARE(KeyboardEnvironment::content(), "XDG_SESSION_TYPE=wayland\n" + lines);
}

QTEST_GUILESS_MAIN(TestRealTools)
#include "tst_realtools.moc"
