// The tour of the program on a whole device whose clock moves: every line that it prints.
#include "childprocess.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

class TestDeviceTour : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tourActsOnTheWholeDevice();
};

void TestDeviceTour::tourActsOnTheWholeDevice()
{
    const QTemporaryDir pictures;
    ChildProcess device;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The device's clock is a library that comes before the sanitizer's.
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
                       environment.value(QStringLiteral("ASAN_OPTIONS"))
                           + QStringLiteral(":verify_asan_link_order=0"));
    device.setProcessEnvironment(environment);
    device.start(QStringLiteral(ZB_VIRTUAL_DEVICE),
                 {QStringLiteral("--device-clock"), QStringLiteral("--"), QStringLiteral(ZB_SETTINGS_PROGRAM),
                  QStringLiteral("--pictures"), pictures.path()});
    QVERIFY(device.waitForFinished(100000));
    const QByteArray output = device.readAllStandardOutput();
    const QByteArray errors = device.readAllStandardError();
    constexpr int notAllowedHere = 77;
    if (device.exitCode() == notAllowedHere)
        QSKIP(errors.trimmed().constData());

    QStringList lines;
    QByteArray failures = errors;
    for (const QByteArray &line : output.split('\n')) {
        if (!line.startsWith("ok picture"))
            lines += QString::fromUtf8(line);
        if (!line.startsWith("ok "))
            failures += line + '\n';
    }
    // A test's message has no room for all that went well.
    QVERIFY2(device.exitCode() == 0, failures.right(1500));
    for (const char *line :
         {"ok the About page shows '3.1.1.11', the back end says '3.1.1.11'",
          "ok the About page shows '-3', fw_printenv hOffset says '-3'",
          "ok the About page shows '02:00:5e:10:00:01', the kernel says '02:00:5e:10:00:01'",
          "ok the keyboard layout German was picked, /etc/corvanta/wayland.env holds "
          "'XKB_DEFAULT_LAYOUT=de', the "
          "setting is 'de'",
          "ok automatic date and time was turned off, timedatectl says NTP=no",
          "ok February 2027 offers 28 days, February 2028 29",
          "ok this program's clock shows it, the page says 'The clock was set'",
          "ok automatic date and time was turned on, timedatectl says NTP=yes",
          "ok the options were saved, the first preset is 'Shoes'",
          "ok all 18 options were changed, lpoptions says CutMedia=2 Dithering=18 Feed=Custom.2000 "
          "Hoffset1=Custom.1 Hoffset2=Custom.-1 MirrorPrint=False NegativePrint=True Overprint=True "
          "R1TensionAdjust=Custom.1 R2TensionAdjust=Custom.-1 RibbonSaver=Enabled Stop=Custom.-1 "
          "Voffset1=Custom.1 Voffset2=Custom.-1 WhiteBase=True head1Offset=Custom.1 "
          "head2Offset=Custom.-1 orientation-requested=4",
          "ok the preset Shoes was loaded, the page says '“Shoes” was loaded'",
          "ok the deletion was cancelled, the first preset is 'Shoes'",
          "ok job 1 carries all 18 options of the preset, ipptool says CutMedia=0 Dithering=0 "
          "Feed=Custom.2 Hoffset1=0 Hoffset2=0 MirrorPrint=true NegativePrint=false Overprint=false "
          "R1TensionAdjust=0 R2TensionAdjust=0 RibbonSaver=Enabled Stop=0 Voffset1=0 Voffset2=0 "
          "WhiteBase=false head1Offset=0 head2Offset=0 orientation-requested=reverse-portrait",
          "ok three documents were printed with lp, the page shows 'Notes', 'Screen', 'Shoe box', the print "
          "queue has "
          "'Notes', 'Screen', 'Shoe box'",
          "ok the page shows the picture of the PDF document",
          "ok one was printed again, the page says '“Shoe box” was sent to the printer again', the newest "
          "job is 'Shoe "
          "box'",
          "ok the print queue daemon was killed, the page says that it is gone and shows 'Shoe box', "
          "'Notes', 'Screen'",
          "ok it was started again: of 5 jobs it has 5, the page shows 'Shoe box', 'Notes', 'Screen'",
          "ok the history of 5 jobs was cleared, the page says 'No print jobs', the print queue has 0"})
        QVERIFY2(lines.contains(QString::fromUtf8(line)), line);
    QVERIFY2(output.contains("ok the supply calibration was reset, fw_printenv says tachLow="), output);
    QVERIFY2(output.contains("ok the clock was set by hand to 2028-02-29T21:07:00, "), output);
    QVERIFY2(output.contains("ok the test page was printed for a supply of 4.1 inches, job 1 is "
                             "/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_6x6.tavo ("),
             output);
    QVERIFY2(!output.contains("skipped"), output);
    // Nothing on any page is left to the QML engine to complain about.
    QVERIFY2(!errors.contains("qrc:"), errors);
    for (const char *name : {"about",
                             "about-middle",
                             "about-end",
                             "about-reset-confirmation",
                             "about-reset-done",
                             "languages",
                             "languages-keyboards-search",
                             "languages-german",
                             "date-time-set",
                             "date-time-set-by-hand",
                             "presets-name-typed",
                             "presets-loaded",
                             "presets-deletion",
                             "printer-mirror-portrait",
                             "printer-alignment-test-page",
                             "printer-advanced-changed",
                             "history-three",
                             "history-details",
                             "history-reprinted",
                             "history-queue-gone",
                             "history-queue-back",
                             "history-cleared"})
        QVERIFY2(QDir(pictures.path()).exists(QString::fromLatin1(name) + QStringLiteral(".png")), name);
}

QTEST_GUILESS_MAIN(TestDeviceTour)
#include "tst_devicetour.moc"
