// The About page: which tool is asked for which field, and what becomes of what it prints.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtCore/QPointer>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <limits>
#include <memory>

namespace {

constexpr int serialNumber = 0;
constexpr int versionNumbers = 1;
constexpr int storageValue = 2;
constexpr int ethernetAddress = 3;
constexpr int wirelessAddress = 4;
constexpr int offsetValues = 5;
constexpr int calibrationValues = 6;

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class TestAbout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fieldRunsItsToolOnce_data();
    void fieldRunsItsToolOnce();
    void versionIsFixedAndRunsNothing();
    void unknownFieldIsEmptyAndRunsNothing_data();
    void unknownFieldIsEmptyAndRunsNothing();
    void outputIsReturnedUnchanged_data();
    void outputIsReturnedUnchanged();
    void standardErrorIsNotRead();
    void exitStatusIsNotLookedAt_data();
    void exitStatusIsNotLookedAt();
    void nothingIsCached();
    void everyAboutReadKeepsItsProcessObject_data();
    void everyAboutReadKeepsItsProcessObject();
    void keptProcessObjectsGoWithTheSettings();
    void toolIsStartedForReadingAndWriting();
    void tableOfTheDiskIsNotTranslated();
    void offsetsAreReadOnceAndSplit();
    void nothingIsStoredEmittedOrLogged();

private:
    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<MessageLog> m_log;
};

void TestAbout::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_log = std::make_unique<MessageLog>();
}

void TestAbout::cleanup()
{
    m_settings.reset();
    m_log.reset();
    m_tools.reset();
    SettingsFile::removeAll();
}

void TestAbout::fieldRunsItsToolOnce_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QStringList>("command");
    QTest::newRow("serial number") << serialNumber << words("fw_printenv -n serialNumber");
    QTest::newRow("storage") << storageValue << words("df -t ext4 -h");
    QTest::newRow("Ethernet address") << ethernetAddress << words("fw_printenv -n ethaddr");
    QTest::newRow("wireless address") << wirelessAddress << words("cat /sys/class/net/wlan0/address");
    QTest::newRow("offsets") << offsetValues
                             << words("fw_printenv -n backstop hOffset bMarkOffset gapOffset tphHeat "
                                      "backstop2 hOffset2 bMarkOffset2 gapOffset2 tphHeat2");
    QTest::newRow("calibration") << calibrationValues
                                 << words("fw_printenv -n tachLow tachHigh cutterTrans supplyTrans "
                                          "supplyRefl");
}

void TestAbout::fieldRunsItsToolOnce()
{
    QFETCH(int, field);
    QFETCH(QStringList, command);
    m_tools->setOutput(command.first(), "what the tool prints\n");
    QCOMPARE(m_settings->getAboutInfo(field), QStringLiteral("what the tool prints\n"));
    QCOMPARE(m_tools->commands(), QList<QStringList>({command}));
}

void TestAbout::versionIsFixedAndRunsNothing()
{
    QCOMPARE(m_settings->getAboutInfo(versionNumbers), QStringLiteral("3.1.1.11"));
    QCOMPARE(m_settings->findChildren<QProcess *>().last()->state(), QProcess::NotRunning);
    QCOMPARE(m_settings->findChildren<QProcess *>().last()->program(), QString());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
}

void TestAbout::unknownFieldIsEmptyAndRunsNothing_data()
{
    QTest::addColumn<int>("field");
    for (const int field :
         {7, -1, 8, 256, 0x10000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QTest::addRow("%d", field) << field;
}

void TestAbout::unknownFieldIsEmptyAndRunsNothing()
{
    QFETCH(int, field);
    QCOMPARE(m_settings->getAboutInfo(field), QString());
    QCOMPARE(m_settings->findChildren<QProcess *>().last()->program(), QString());
    QCOMPARE(m_tools->commands(), QList<QStringList>());
}

void TestAbout::outputIsReturnedUnchanged_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("text");
    QTest::newRow("line with its end") << QByteArray("ZB20240001\n") << QStringLiteral("ZB20240001\n");
    QTest::newRow("no line end") << QByteArray("ZB20240001") << QStringLiteral("ZB20240001");
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("line end alone") << QByteArray("\n") << QStringLiteral("\n");
    QTest::newRow("blanks") << QByteArray(" \t two  words \r\n\n") << QStringLiteral(" \t two  words \r\n\n");
    QTest::newRow("several lines") << QByteArray("1\n\n3\n") << QStringLiteral("1\n\n3\n");
    QTest::newRow("UTF-8") << QByteArray("M\xc3\xbcller \xe6\x97\xa5 \xf0\x9f\x98\x80\n")
                           << QStringLiteral("Müller 日 😀\n");
    QTest::newRow("NUL byte ends it") << QByteArray("before\0after\n", 13) << QStringLiteral("before");
    QTest::newRow("NUL byte first") << QByteArray("\0after\n", 7) << QString();
    QTest::newRow("no UTF-8") << QByteArray("a\xff\xfe\xc3\n") << QStringLiteral("a\ufffd\ufffd\ufffd\n");
    QTest::newRow("escape sequences")
        << QByteArray("\x1b[31mred\x07\n") << QStringLiteral("\x1b[31mred\x07\n");
    QTest::newRow("markup") << QByteArray("<b>&amp;%1</b>\n") << QStringLiteral("<b>&amp;%1</b>\n");
}

void TestAbout::outputIsReturnedUnchanged()
{
    QFETCH(QByteArray, output);
    QFETCH(QString, text);
    for (const char *const program : {"fw_printenv", "df", "cat"})
        m_tools->setOutput(QString::fromLatin1(program), output);
    for (const int field :
         {serialNumber, storageValue, ethernetAddress, wirelessAddress, offsetValues, calibrationValues})
        QCOMPARE(m_settings->getAboutInfo(field), text);
}

void TestAbout::standardErrorIsNotRead()
{
    m_tools->setOutput(
        QStringLiteral("df"), "table\n",
        {RecordingTools::complain(1000), RecordingTools::print(), RecordingTools::complain(1000)});
    QCOMPARE(m_settings->getAboutInfo(storageValue), QStringLiteral("table\n"));
    m_tools->setSteps(QStringLiteral("df"), {RecordingTools::complain(1000)});
    QCOMPARE(m_settings->getAboutInfo(storageValue), QString());
}

void TestAbout::exitStatusIsNotLookedAt_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("success") << RecordingTools::exitWith(0);
    QTest::newRow("failure") << RecordingTools::exitWith(1);
    QTest::newRow("another failure") << RecordingTools::exitWith(255);
    QTest::newRow("crash") << RecordingTools::crash();
}

void TestAbout::exitStatusIsNotLookedAt()
{
    QFETCH(QByteArray, end);
    m_tools->setOutput(QStringLiteral("fw_printenv"), "1\n2\n", {RecordingTools::print(), end});
    QCOMPARE(m_settings->getAboutInfo(calibrationValues), QStringLiteral("1\n2\n"));
}

void TestAbout::nothingIsCached()
{
    for (int i = 1; i <= 3; ++i) {
        m_tools->setOutput(QStringLiteral("fw_printenv"), QByteArray::number(i));
        QCOMPARE(m_settings->getAboutInfo(serialNumber), QString::number(i));
        QCOMPARE(m_tools->runs().size(), i);
    }
}

void TestAbout::everyAboutReadKeepsItsProcessObject_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<bool>("isFormatted");
    QTest::newRow("serial number") << serialNumber << false;
    QTest::newRow("version") << versionNumbers << false;
    QTest::newRow("storage") << storageValue << false;
    QTest::newRow("Ethernet address") << ethernetAddress << false;
    QTest::newRow("wireless address") << wirelessAddress << false;
    QTest::newRow("offsets") << offsetValues << false;
    QTest::newRow("offsets as lines") << offsetValues << true;
    QTest::newRow("calibration") << calibrationValues << false;
    QTest::newRow("unknown") << 7 << false;
    QTest::newRow("negative") << -1 << false;
}

void TestAbout::everyAboutReadKeepsItsProcessObject()
{
    QFETCH(int, field);
    QFETCH(bool, isFormatted);
    QList<QPointer<QProcess>> kept;
    const QList<QProcess *> first = m_settings->findChildren<QProcess *>();
    for (QProcess *const process : first)
        kept.append(process);
    for (int i = 0; i < 3; ++i) {
        if (isFormatted)
            m_settings->formatOffsets();
        else
            m_settings->getAboutInfo(field);
        // Whatever was to be deleted later is gone after this.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QList<QProcess *> children =
            m_settings->findChildren<QProcess *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(children.size(), kept.size() + 1);
        kept.append(children.last());
        for (int j = 0; j < kept.size(); ++j)
            QCOMPARE(kept.at(j).data(), children.at(j));
    }
}

void TestAbout::keptProcessObjectsGoWithTheSettings()
{
    for (const int field : {serialNumber, versionNumbers, 7})
        m_settings->getAboutInfo(field);
    QList<QPointer<QProcess>> kept;
    const QList<QProcess *> children = m_settings->findChildren<QProcess *>();
    for (QProcess *const process : children)
        kept.append(process);
    QCOMPARE(kept.size(), 4);
    m_settings.reset();
    for (const QPointer<QProcess> &process : qAsConst(kept))
        QVERIFY(!process);
}

void TestAbout::toolIsStartedForReadingAndWriting()
{
    m_settings->getAboutInfo(storageValue);
    QCOMPARE(m_settings->findChildren<QProcess *>().last()->openMode(),
             QIODevice::OpenMode(QIODevice::ReadWrite));
    QCOMPARE(m_tools->runs().first().standardInput, QByteArray("pipe"));
}

void TestAbout::tableOfTheDiskIsNotTranslated()
{
    const bool hasLocale = qEnvironmentVariableIsSet("LC_ALL");
    const QByteArray locale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "de_DE.UTF-8");
    m_settings->getAboutInfo(storageValue);
    if (hasLocale)
        qputenv("LC_ALL", locale);
    else
        qunsetenv("LC_ALL");
    QCOMPARE(m_tools->runs().first().locale, QByteArray("C"));
}

void TestAbout::offsetsAreReadOnceAndSplit()
{
    m_tools->setOutput(QStringLiteral("fw_printenv"), "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n");
    QCOMPARE(m_settings->formatOffsets(),
             QStringList({QStringLiteral("1, 2, 3, 4, 5"), QStringLiteral("6, 7, 8, 9, 10")}));
    QCOMPARE(m_tools->commands(),
             QList<QStringList>({words("fw_printenv -n backstop hOffset bMarkOffset gapOffset tphHeat "
                                       "backstop2 hOffset2 bMarkOffset2 gapOffset2 tphHeat2")}));

    m_tools->remove(QStringLiteral("fw_printenv"));
    QCOMPARE(m_settings->formatOffsets(),
             QStringList({QStringLiteral(", , , , "), QStringLiteral(", , , , ")}));
}

void TestAbout::nothingIsStoredEmittedOrLogged()
{
    const EmissionRecorder recorder(m_settings.get());
    for (int field = -1; field <= 7; ++field)
        m_settings->getAboutInfo(field);
    m_settings->formatOffsets();
    for (const char *const program : {"fw_printenv", "df", "cat"})
        m_tools->remove(QString::fromLatin1(program));
    for (int field = -1; field <= 7; ++field)
        m_settings->getAboutInfo(field);
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestAbout)
#include "tst_about.moc"
