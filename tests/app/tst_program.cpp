// The program zbsettings as a whole: the tour that takes pictures, and its answers to the command line.
#include "childprocess.h"
#include "settingsfile.h"
#include "utilitydaemon.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QtTest>

#include <csignal>

class TestProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void tourShowsThatAllWorksAndLeavesPictures();
    void tourStoresTheBrightnessAndTellsTheDaemon();
    void tourNeedsNoDisplayAndNoSettingOfItsOwn();
    void windowOpensWithoutOpenGl();
    void tourWithoutADaemonFailsAndSaysWhy();
    void tourIntoAFileFailsAndSaysWhy();
    void pictureHasTheSizeThatWasAskedFor();
    void answerToTheCommandLine_data();
    void answerToTheCommandLine();

private:
    struct Result
    {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
    };

    static Result run(const QStringList &arguments, const QStringList &withoutVariables = {});
};

namespace {

constexpr int tourMilliseconds = 60000;

int countColours(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours += image.pixel(x, y);
    }
    return colours.size();
}

} // namespace

void TestProgram::init()
{
    SettingsFile::removeAll();
}

TestProgram::Result TestProgram::run(const QStringList &arguments, const QStringList &withoutVariables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : withoutVariables)
        environment.remove(variable);
    ChildProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(ZB_SETTINGS_PROGRAM), arguments);
    Result result;
    if (program.waitForFinished(tourMilliseconds) && program.exitStatus() == QProcess::NormalExit)
        result.exitCode = program.exitCode();
    result.output = program.readAllStandardOutput();
    result.errors = program.readAllStandardError();
    return result;
}

void TestProgram::tourShowsThatAllWorksAndLeavesPictures()
{
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    const QTemporaryDir directory;
    const Result result =
        run({QStringLiteral("--pictures"), directory.filePath(QStringLiteral("new/pictures"))});
    QVERIFY2(result.exitCode == 0, result.output + result.errors);
    QVERIFY2(!result.output.contains("FAILED"), result.output);
    const QByteArray file = SettingsFile::path().toUtf8();
    for (const QByteArray &line :
         {"ok the brightness slider was moved from 7 to 3, " + file + " holds '3'\n",
          QByteArray(
              "ok the utility daemon was last called with setDisplayBrightness, signature 'u', value 3\n"),
          QByteArray("ok process 'zbsettings --select-tab 3' wrote 3 to the local socket, the application "
                     "shows tab 3 "
                     "(System Updates)\n"),
          QByteArray("ok the daemon says that the internet is gone, the page says 'Not connected to the "
                     "internet'\n"),
          QByteArray(
              "ok the daemon says that the internet is back, the page says 'Connected to the internet'\n")})
        QVERIFY2(result.output.contains(line), line + "not in\n" + result.output);

    // What would act on the machine, since this device has but a bus of its own.
    for (const char *line :
         {"skipped the reset of the supply calibration, which needs a whole virtual device\n",
          "skipped the choice of a keyboard layout, which needs a whole virtual device\n",
          "skipped setting the clock, which needs a whole virtual device\n",
          "skipped print options, presets and printing, which need a whole virtual device\n",
          "skipped the print history, which needs a whole virtual device\n"})
        QVERIFY2(result.output.contains(line), line + result.output);

    const QDir pictures(directory.filePath(QStringLiteral("new/pictures")));
    QStringList names = pictures.entryList(QDir::Files, QDir::Name);
    QCOMPARE(names,
             QStringList({QStringLiteral("about-end.png"),
                          QStringLiteral("about-middle.png"),
                          QStringLiteral("about.png"),
                          QStringLiteral("date-time-zones.png"),
                          QStringLiteral("date-time.png"),
                          QStringLiteral("general-brightness-moved.png"),
                          QStringLiteral("general-choices.png"),
                          QStringLiteral("general-end.png"),
                          QStringLiteral("general-middle.png"),
                          QStringLiteral("general.png"),
                          QStringLiteral("internet-back.png"),
                          QStringLiteral("internet-gone-updates.png"),
                          QStringLiteral("internet-gone.png"),
                          QStringLiteral("languages-keyboards-search.png"),
                          QStringLiteral("languages-keyboards.png"),
                          QStringLiteral("languages-list.png"),
                          QStringLiteral("languages.png"),
                          QStringLiteral("networking.png"),
                          QStringLiteral("no-such-tab.png"),
                          QStringLiteral("presets-name.png"),
                          QStringLiteral("presets.png"),
                          QStringLiteral("print-history.png"),
                          QStringLiteral("printer-advanced-end.png"),
                          QStringLiteral("printer-advanced.png"),
                          QStringLiteral("printer-alignment-end.png"),
                          QStringLiteral("printer-alignment.png"),
                          QStringLiteral("printer-dithering.png"),
                          QStringLiteral("printer-end.png"),
                          QStringLiteral("printer.png"),
                          QStringLiteral("system-updates.png"),
                          QStringLiteral("tab-selected-by-another-process.png"),
                          QStringLiteral("users-passwords.png")}));
    QSet<QByteArray> different;
    for (const QString &name : qAsConst(names)) {
        const QImage picture(pictures.filePath(name));
        QCOMPARE(picture.size(), QSize(800, 480));
        // Smooth letters alone bring dozens; a window that was not drawn has one or two.
        QVERIFY2(countColours(picture) > 60, qPrintable(name));
    }
    QVERIFY(QImage(pictures.filePath(QStringLiteral("internet-gone.png")))
            != QImage(pictures.filePath(QStringLiteral("internet-back.png"))));
    QVERIFY(QImage(pictures.filePath(QStringLiteral("general.png")))
            != QImage(pictures.filePath(QStringLiteral("general-brightness-moved.png"))));
}

void TestProgram::tourStoresTheBrightnessAndTellsTheDaemon()
{
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=3\n"));
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    const QTemporaryDir directory;
    const Result result = run({QStringLiteral("--pictures"), directory.path()});
    QVERIFY2(result.exitCode == 0, result.output + result.errors);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=8\n"));
    UtilityDaemon::Call last;
    for (const UtilityDaemon::Call &call : daemon.calls()) {
        if (call.method == QLatin1String("setDisplayBrightness"))
            last = call;
    }
    QCOMPARE(last.signature, QStringLiteral("u"));
    QCOMPARE(last.arguments, QVariantList({8U}));
}

void TestProgram::tourNeedsNoDisplayAndNoSettingOfItsOwn()
{
    UtilityDaemon daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    const QTemporaryDir directory;
    const Result result = run({QStringLiteral("--pictures"), directory.path()},
                              {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("QT_QUICK_BACKEND"),
                               QStringLiteral("DISPLAY"), QStringLiteral("WAYLAND_DISPLAY")});
    QVERIFY2(result.exitCode == 0, result.output + result.errors);
}

void TestProgram::windowOpensWithoutOpenGl()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QUICK_BACKEND"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    ChildProcess application;
    application.setProcessEnvironment(environment);
    application.start(QStringLiteral(ZB_SETTINGS_PROGRAM), {});
    // The socket answers before the window is drawn, hence a second message.
    QTRY_COMPARE(run({QStringLiteral("--select-tab"), QStringLiteral("3")}).exitCode, 0);
    QTRY_COMPARE(run({QStringLiteral("--select-tab"), QStringLiteral("1")}).exitCode, 0);
    application.terminate();
    QVERIFY(application.waitForFinished());
    QCOMPARE(application.error(), QProcess::Crashed);
    QCOMPARE(application.exitCode(), SIGTERM);
}

void TestProgram::tourWithoutADaemonFailsAndSaysWhy()
{
    const QTemporaryDir directory;
    const Result result = run({QStringLiteral("--pictures"), directory.path()});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.output.contains(
                 "FAILED the internet state cannot be changed: there is no utility daemon of a "
                 "virtual device on the system bus (start this program with zbvirtualdevice)\n"),
             result.output);
    QVERIFY2(result.output.contains("ok the brightness slider was moved from 7 to 3, "), result.output);
    QVERIFY2(result.output.contains("ok process 'zbsettings --select-tab 3' wrote 3"), result.output);
    QCOMPARE(result.output.count("FAILED"), 1);
}

void TestProgram::tourIntoAFileFailsAndSaysWhy()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Result result = run({QStringLiteral("--pictures"), file.fileName()});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.output, "FAILED cannot make the folder " + file.fileName().toUtf8() + '\n');
}

void TestProgram::pictureHasTheSizeThatWasAskedFor()
{
    const QTemporaryDir directory;
    run({QStringLiteral("--pictures"), directory.path(), QStringLiteral("--size"),
         QStringLiteral("1024x600")});
    QCOMPARE(QImage(directory.filePath(QStringLiteral("general.png"))).size(), QSize(1024, 600));
}

void TestProgram::answerToTheCommandLine_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("errors");
    QTest::newRow("--version") << 0 << QByteArray("zbsettings 1.0.0\n") << QByteArray();
    QTest::newRow("--help") << 0 << QByteArray("Usage: zbsettings [OPTIONS]\n") << QByteArray();
    QTest::newRow("--nonsense") << 1 << QByteArray()
                                << QByteArray("zbsettings: Unknown option 'nonsense'.\n");
    QTest::newRow("--tab=x") << 1 << QByteArray()
                             << QByteArray("zbsettings: 'x' is not the number of a tab.\n");
}

void TestProgram::answerToTheCommandLine()
{
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, errors);
    const Result result = run({QString::fromLatin1(QTest::currentDataTag())});
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY2(result.output.startsWith(output), result.output);
    QCOMPARE(result.errors, errors);
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
