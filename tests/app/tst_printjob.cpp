// The texts of the print system's tools, as they look on Debian 12.
#include "printjob.h"

#include <QtTest/QtTest>

class TestPrintJob : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsAreReadWithTheirQuotes();
    void attributesAreReadWhateverTheirType();
    void jobIsKnownByItsDocument_data();
    void jobIsKnownByItsDocument();
};

void TestPrintJob::optionsAreReadWithTheirQuotes()
{
    const QMap<QString, QString> options =
        optionsByTool(QStringLiteral("copies=1 Feed=Custom.2 printer-info='BrackenXL of the device' "
                                     "printer-state-reasons=none RibbonSaver=Enabled\n"));
    QCOMPARE(options.value(QStringLiteral("Feed")), QStringLiteral("Custom.2"));
    QCOMPARE(options.value(QStringLiteral("printer-info")), QStringLiteral("BrackenXL of the device"));
    QCOMPARE(options.value(QStringLiteral("RibbonSaver")), QStringLiteral("Enabled"));
    QCOMPARE(options.size(), 5);
}

void TestPrintJob::attributesAreReadWhateverTheirType()
{
    const QMap<QString, QString> attributes = attributesByTool(
        QStringLiteral("\"/tmp/request\":\n"
                       "    Get-Job-Attributes                                                   [PASS]\n"
                       "        RECEIVED: 2090 bytes in response\n"
                       "        status-code = successful-ok (successful-ok)\n"
                       "        job-uri (uri) = ipp://localhost/jobs/1\n"
                       "        orientation-requested (enum) = reverse-portrait\n"
                       "        MirrorPrint (boolean) = true\n"
                       "        CutMedia (nameWithoutLanguage) = 0\n"
                       "        job-printer-state-message (textWithoutLanguage) = \n"));
    QCOMPARE(attributes.value(QStringLiteral("orientation-requested")), QStringLiteral("reverse-portrait"));
    QCOMPARE(attributes.value(QStringLiteral("MirrorPrint")), QStringLiteral("true"));
    QCOMPARE(attributes.value(QStringLiteral("CutMedia")), QStringLiteral("0"));
    QCOMPARE(attributes.size(), 5);
}

void TestPrintJob::jobIsKnownByItsDocument_data()
{
    QTest::addColumn<int>("job");
    QTest::newRow("job-1.prn") << 1;
    QTest::newRow("job-120.prn") << 120;
    QTest::newRow("job-1.new") << 0;
    QTest::newRow("job-1.opts") << 0;
    QTest::newRow("job-.prn") << 0;
}

void TestPrintJob::jobIsKnownByItsDocument()
{
    QFETCH(int, job);
    QCOMPARE(jobOfDocument(QString::fromLatin1(QTest::currentDataTag())), job);
}

QTEST_APPLESS_MAIN(TestPrintJob)
#include "tst_printjob.moc"
