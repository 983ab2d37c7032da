// Printing on the device, with the machine's own tools: what is sent to the queue BrackenXL arrives at the
// printer, unchanged and with its options. This program runs in a device of either kind.
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

class PrintingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void documentsArriveUnchanged_data();
    void documentsArriveUnchanged();
    void optionsOfTheHomeReachThePrinterAndTheJob();
    void optionsOfTheCommandReachOnlyItsJob();
    void ownValuesAreAcceptedWithinTheirRanges_data();
    void ownValuesAreAcceptedWithinTheirRanges();
    void choicesAreThePrinters_data();
    void choicesAreThePrinters();
    void descriptionOfTheQueueIsValid();
    void heldSchedulerAnswersWhenItGoesOn();
    void acceptedJobOutlivesItsScheduler();
    void onlyTheDevicesOwnUserMayChangeQueues();
    void configurationIsNotReadByThePort();

private:
    QString document(const QByteArray &content);
    int send(const QStringList &arguments);
};

namespace {

struct Run
{
    int status = -1;
    QByteArray output;
};

Run run(const QString &program, const QStringList &arguments, int milliseconds = 30000)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.closeWriteChannel();
    const bool ended = process.waitForFinished(milliseconds);
    if (!ended) {
        process.kill();
        process.waitForFinished();
    }
    return {ended ? process.exitCode() : -1, process.readAll()};
}

QString variable(const char *name)
{
    return qEnvironmentVariable(name);
}

QString printedFile(int job, const char *ending)
{
    return variable("ZBVIRTUALDEVICE_PRINTED") + QStringLiteral("/job-%1.").arg(job) + QLatin1String(ending);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

bool waitForPrint(int job)
{
    QFileSystemWatcher watcher({variable("ZBVIRTUALDEVICE_PRINTED")});
    QSignalSpy changes(&watcher, &QFileSystemWatcher::directoryChanged);
    while (!QFileInfo::exists(printedFile(job, "prn"))) {
        if (!changes.wait(10000))
            return QFileInfo::exists(printedFile(job, "prn"));
    }
    return true;
}

QStringList printedOptions(int job)
{
    return QString::fromUtf8(contentOf(printedFile(job, "opts"))).trimmed().split(QLatin1Char(' '));
}

int control(const char *verb)
{
    return run(variable("ZBVIRTUALDEVICE_SCHEDULER"), {QLatin1String(verb)}).status;
}

QString jobAddress(int job)
{
    QString address = variable("ZBVIRTUALDEVICE_PRINTER");
    return address.replace(QStringLiteral("printers/BrackenXL"), QStringLiteral("jobs/%1").arg(job));
}

} // namespace

void PrintingTest::init()
{
    QFile::remove(QDir::homePath() + QStringLiteral("/.cups/lpoptions"));
}

QString PrintingTest::document(const QByteArray &content)
{
    const QString path = QDir::homePath() + QStringLiteral("/document");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return {};
    return path;
}

// The number of the job.
int PrintingTest::send(const QStringList &arguments)
{
    const Run lp =
        run(QStringLiteral("lp"), QStringList{QStringLiteral("-d"), QStringLiteral("BrackenXL")} + arguments);
    // "request id is BrackenXL-7 (1 file(s))"
    return lp.output.startsWith("request id is BrackenXL-")
        ? lp.output.mid(24, lp.output.indexOf(' ', 24) - 24).toInt()
        : 0;
}

void PrintingTest::documentsArriveUnchanged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("document") << QByteArray("%PDF-1.4\n%\xe2\xe3\n") << QByteArray("application/pdf");
    QTest::newRow("picture, PNG") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)
                                  << QByteArray("image/png");
    QTest::newRow("picture, JPEG") << QByteArray("\xff\xd8\xff\xe0\0\x10JFIF\0", 11)
                                   << QByteArray("image/jpeg");
    QTest::newRow("text") << QByteArray("Shoes, gr\xc3\xb6\xc3\x9f"
                                        "e 41\n")
                          << QByteArray("text/plain");
    QTest::newRow("anything") << QByteArray("\0\1\2\xfe\xff\0", 6) << QByteArray("application/octet-stream");
}

void PrintingTest::documentsArriveUnchanged()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, type);
    const int job = send({document(content)});
    QVERIFY(job > 0);
    QVERIFY(waitForPrint(job));
    QCOMPARE(contentOf(printedFile(job, "prn")), content);
    const Run attributes =
        run(QStringLiteral("ipptool"),
            {QStringLiteral("-tv"), jobAddress(job), QStringLiteral("get-job-attributes.test")});
    QVERIFY2(attributes.output.contains("document-format (mimeMediaType) = " + type + '\n'),
             attributes.output.constData());
}

void PrintingTest::optionsOfTheHomeReachThePrinterAndTheJob()
{
    const QStringList set = {
        QStringLiteral("orientation-requested=5"),
        QStringLiteral("MirrorPrint=True"),
        QStringLiteral("NegativePrint=True"),
        QStringLiteral("Overprint=True"),
        QStringLiteral("WhiteBase=False"),
        QStringLiteral("CutMedia=2"),
        QStringLiteral("Hoffset1=Custom.12"),
        QStringLiteral("Hoffset2=Custom.-13"),
        QStringLiteral("Voffset1=0"),
        QStringLiteral("Voffset2=Custom.-2000"),
        QStringLiteral("Feed=Custom.2000"),
        QStringLiteral("Stop=Custom.1.5"),
        QStringLiteral("Dithering=65"),
        QStringLiteral("head1Offset=Custom.50"),
        QStringLiteral("head2Offset=Custom.-50"),
        QStringLiteral("R1TensionAdjust=Custom.-10"),
        QStringLiteral("R2TensionAdjust=Custom.4"),
        QStringLiteral("RibbonSaver=Enabled"),
    };
    QStringList arguments = {QStringLiteral("-p"), QStringLiteral("BrackenXL")};
    for (const QString &option : set)
        arguments += {QStringLiteral("-o"), option};
    QCOMPARE(run(QStringLiteral("lpoptions"), arguments).status, 0);
    const QByteArray stored = contentOf(QDir::homePath() + QStringLiteral("/.cups/lpoptions"));
    QVERIFY2(stored.startsWith("Dest BrackenXL "), stored.constData());

    const int job = send({document("text\n")});
    QVERIFY(waitForPrint(job));
    QStringList expected = set;
    expected.replace(1, QStringLiteral("MirrorPrint"));
    expected.replace(2, QStringLiteral("NegativePrint"));
    expected.replace(3, QStringLiteral("Overprint"));
    expected.replace(4, QStringLiteral("noWhiteBase"));
    const QStringList printed = printedOptions(job);
    for (const QString &option : qAsConst(expected))
        QVERIFY2(printed.contains(option),
                 qPrintable(option + QStringLiteral(" is not in ") + printed.join(QLatin1Char(' '))));

    const QByteArray attributes =
        run(QStringLiteral("ipptool"),
            {QStringLiteral("-tv"), jobAddress(job), QStringLiteral("get-job-attributes.test")})
            .output;
    for (const char *const line :
         {"orientation-requested (enum) = reverse-landscape", "MirrorPrint (boolean) = true",
          "WhiteBase (boolean) = false", "CutMedia (nameWithoutLanguage) = 2",
          "Hoffset2 (nameWithoutLanguage) = Custom.-13", "Voffset1 (nameWithoutLanguage) = 0",
          "Stop (nameWithoutLanguage) = Custom.1.5", "Dithering (nameWithoutLanguage) = 65",
          "RibbonSaver (nameWithoutLanguage) = Enabled"})
        QVERIFY2(attributes.contains(QByteArray(line) + '\n'), attributes.constData());
}

void PrintingTest::optionsOfTheCommandReachOnlyItsJob()
{
    const int withOption =
        send({QStringLiteral("-o"), QStringLiteral("Feed=Custom.-77"), document("text\n")});
    const int without = send({document("text\n")});
    QVERIFY(waitForPrint(withOption) && waitForPrint(without));
    QVERIFY(printedOptions(withOption).contains(QStringLiteral("Feed=Custom.-77")));
    const QString others = printedOptions(without).join(QLatin1Char(' '));
    QVERIFY2(!others.contains(QStringLiteral("Feed")), qPrintable(others));
}

void PrintingTest::ownValuesAreAcceptedWithinTheirRanges_data()
{
    QTest::addColumn<QByteArray>("range");
    for (const char *const option : {"Feed", "Hoffset1", "Hoffset2", "Voffset1", "Voffset2"})
        QTest::newRow(option) << QByteArray("int -2000 2000");
    QTest::newRow("Stop") << QByteArray("real -2000 2000");
    for (const char *const option : {"head1Offset", "head2Offset"})
        QTest::newRow(option) << QByteArray("int -50 50");
    for (const char *const option : {"R1TensionAdjust", "R2TensionAdjust"})
        QTest::newRow(option) << QByteArray("int -10 10");
}

void PrintingTest::ownValuesAreAcceptedWithinTheirRanges()
{
    QFETCH(QByteArray, range);
    const QByteArray option = QTest::currentDataTag();
    const QByteArray listed = run(QStringLiteral("lpoptions"),
                                  {QStringLiteral("-p"), QStringLiteral("BrackenXL"), QStringLiteral("-l")})
                                  .output;
    const QByteArray kind = range.startsWith("real") ? "Custom.REAL" : "Custom.INTEGER";
    const int begin = listed.indexOf('\n' + option + '/');
    const QByteArray line = listed.mid(begin + 1, listed.indexOf('\n', begin + 1) - begin - 1);
    QVERIFY2(line.endsWith(": *0 " + kind), line.constData());
    QFile file(variable("ZBVIRTUALDEVICE_DIRECTORY") + QStringLiteral("/printing/etc/ppd/BrackenXL.ppd"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("*ParamCustom" + option + " Value/Value: 1 " + range + '\n'));
}

void PrintingTest::choicesAreThePrinters_data()
{
    QTest::addColumn<QByteArray>("choices");
    for (const char *const option : {"MirrorPrint", "NegativePrint", "Overprint", "WhiteBase"})
        QTest::newRow(option) << QByteArray("*False True");
    QTest::newRow("RibbonSaver") << QByteArray("*Disabled Enabled");
    QTest::newRow("CutMedia") << QByteArray("*0 1 2");
    QTest::newRow("Dithering") << QByteArray("16 17 18 20 21 24 25 32 33 *0 65 66");
    QTest::newRow("PageSize") << QByteArray("*w288h288 w432h432 w648h648");
}

void PrintingTest::choicesAreThePrinters()
{
    QFETCH(QByteArray, choices);
    const QByteArray listed = '\n'
        + run(QStringLiteral("lpoptions"),
              {QStringLiteral("-p"), QStringLiteral("BrackenXL"), QStringLiteral("-l")})
              .output;
    const int begin = listed.indexOf('\n' + QByteArray(QTest::currentDataTag()) + '/');
    QVERIFY2(begin >= 0, listed.constData());
    const QByteArray line = listed.mid(begin + 1, listed.indexOf('\n', begin + 1) - begin - 1);
    QCOMPARE(line.mid(line.indexOf(": ") + 2), choices);
}

void PrintingTest::descriptionOfTheQueueIsValid()
{
    const Run check =
        run(QStringLiteral("cupstestppd"),
            {QStringLiteral("-r"),
             variable("ZBVIRTUALDEVICE_DIRECTORY") + QStringLiteral("/printing/etc/ppd/BrackenXL.ppd")});
    QVERIFY2(check.status == 0, check.output.constData());
}

void PrintingTest::heldSchedulerAnswersWhenItGoesOn()
{
    QCOMPARE(control("pause"), 0);
    QProcess lpstat;
    lpstat.start(QStringLiteral("lpstat"), {QStringLiteral("-p")});
    const bool answered = lpstat.waitForFinished(200);
    QCOMPARE(control("resume"), 0);
    QVERIFY(!answered);
    QVERIFY(lpstat.waitForFinished());
    QVERIFY(lpstat.readAll().startsWith("printer BrackenXL "));
}

void PrintingTest::acceptedJobOutlivesItsScheduler()
{
    const int job = send({QStringLiteral("-H"), QStringLiteral("hold"), QStringLiteral("-o"),
                          QStringLiteral("CutMedia=1"), document("text\n")});
    QVERIFY(job > 0);
    QCOMPARE(control("kill"), 0);
    QVERIFY(run(QStringLiteral("lpstat"), {QStringLiteral("-p")}).status != 0);
    for (const char *const word : {"kill", "pause", "resume"})
        QVERIFY2(control(word) != 0, "the number may be somebody else's by now");
    QCOMPARE(control("start"), 0);
    QVERIFY2(control("start") != 0, "one scheduler is enough");
    const Run release = run(QStringLiteral("lp"),
                            {QStringLiteral("-i"), QStringLiteral("BrackenXL-%1").arg(job),
                             QStringLiteral("-H"), QStringLiteral("resume")});
    QVERIFY2(release.status == 0, release.output.constData());
    QVERIFY(waitForPrint(job));
    QVERIFY(printedOptions(job).contains(QStringLiteral("CutMedia=1")));
    QCOMPARE(send({document("text\n")}), job + 1);
}

void PrintingTest::onlyTheDevicesOwnUserMayChangeQueues()
{
    // Who comes by the port may be any user of the machine.
    const QString host = QStringLiteral("127.0.0.1:")
        + variable("ZBVIRTUALDEVICE_PRINTER").section(QLatin1Char(':'), 2).section(QLatin1Char('/'), 0, 0);
    const QStringList queue = {QStringLiteral("-p"),        QStringLiteral("Other"), QStringLiteral("-v"),
                               QStringLiteral("bracken:/"), QStringLiteral("-m"),    QStringLiteral("raw")};
    const QStringList byPort = QStringList{QStringLiteral("-h"), host} + queue;
    QVERIFY(run(QStringLiteral("lpadmin"), byPort).status != 0);
    QVERIFY(!run(QStringLiteral("lpstat"), {QStringLiteral("-v")}).output.contains("Other"));
    QCOMPARE(run(QStringLiteral("lpadmin"), queue).status, 0);
    QVERIFY(
        run(QStringLiteral("lpstat"), {QStringLiteral("-v")}).output.contains("device for Other: bracken:/"));
    QCOMPARE(run(QStringLiteral("lpadmin"), {QStringLiteral("-x"), QStringLiteral("Other")}).status, 0);
}

void PrintingTest::configurationIsNotReadByThePort()
{
    const QString port =
        variable("ZBVIRTUALDEVICE_PRINTER").section(QLatin1Char(':'), 2).section(QLatin1Char('/'), 0, 0);
    const QString request = QStringLiteral("exec 3<>/dev/tcp/127.0.0.1/%1;"
                                           "printf 'GET /admin/conf/cupsd.conf HTTP/1.1\\r\\nHost: "
                                           "localhost\\r\\n\\r\\n' >&3; head -n 1 <&3")
                                .arg(port);
    const Run answer = run(QStringLiteral("bash"), {QStringLiteral("-c"), request});
    QVERIFY2(answer.output.startsWith("HTTP/1.1 401"), answer.output.constData());
}

QTEST_GUILESS_MAIN(PrintingTest)
#include "tst_printing.moc"
