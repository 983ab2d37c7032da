// The program zbcompositor without a display: what it prints, its picture, and how it ends.
#include "childprocess.h"

#include <QtGui/QImage>
#include <QtTest/QtTest>

#include <csignal>

class TestCompositorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void pictureShowsWhatWasTyped();
    void wrongKeyCodesAreRefused_data();
    void wrongKeyCodesAreRefused();
    void keyWithoutAnAnswerIsAnError();
    void nothingIsLeftWhenItIsTold_data();
    void nothingIsLeftWhenItIsTold();

private:
    static QStringList foldersOf(qint64 process);
    void start(ChildProcess &process, const QStringList &arguments, const QByteArray &xdotool = {});

    QTemporaryDir m_folder;
};

void TestCompositorProgram::initTestCase()
{
    for (const char *program : {"sway", "Xvfb", "xdotool", "grim"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(QLatin1String(program))));
    }
}

/// The folders of the program with this process id.
QStringList TestCompositorProgram::foldersOf(qint64 process)
{
    QStringList result;
    for (const QString &place : {QDir::tempPath(), QStringLiteral("/tmp")})
        result += QDir(place).entryList({QStringLiteral("zbcompositor-%1-*").arg(process)});
    return result;
}

/// With \a xdotool a script of this content stands for the tool.
void TestCompositorProgram::start(ChildProcess &process, const QStringList &arguments,
                                  const QByteArray &xdotool)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!xdotool.isEmpty()) {
        QFile script(m_folder.filePath(QStringLiteral("xdotool")));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n" + xdotool);
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(QStringLiteral("PATH"),
                           m_folder.path() + QLatin1Char(':') + environment.value(QStringLiteral("PATH")));
    }
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZB_COMPOSITOR), arguments);
    QVERIFY(process.waitForStarted());
}

void TestCompositorProgram::pictureShowsWhatWasTyped()
{
    const QString fileName = m_folder.filePath(QStringLiteral("picture.png"));
    for (int i = 0; i < 5; ++i) {
        QFile::remove(fileName);
        ChildProcess process;
        start(process,
              {QStringLiteral("--type"), QStringLiteral("29,47,24"), QStringLiteral("--picture"), fileName});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardOutput(), QByteArray("y;q\n"));
        QCOMPARE(process.exitCode(), 0);

        const QImage picture(fileName);
        QCOMPARE(picture.size(), QSize(800, 480));
        int dark = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                dark += qGray(picture.pixel(x, y)) < 64 ? 1 : 0;
        }
        QVERIFY2(dark > 300, qPrintable(QStringLiteral("only %1 dark pixels").arg(dark)));
    }
}

void TestCompositorProgram::wrongKeyCodesAreRefused_data()
{
    QTest::addColumn<QString>("codes");
    for (const char *codes : {"", "y", "29,abc,24", " 29", "9", "256", "-5"})
        QTest::newRow(codes) << QString::fromLatin1(codes);
}

void TestCompositorProgram::wrongKeyCodesAreRefused()
{
    QFETCH(QString, codes);
    ChildProcess process;
    start(process, {QStringLiteral("--type=") + codes});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.readAllStandardError(),
             QByteArray("zbcompositor: --type takes key codes from 10 to 255 with commas between them\n"));
}

void TestCompositorProgram::keyWithoutAnAnswerIsAnError()
{
    ChildProcess process;
    start(process, {QStringLiteral("--type"), QStringLiteral("29")}, "exit 3\n");
    const qint64 processId = process.processId();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(foldersOf(processId), QStringList());
}

void TestCompositorProgram::nothingIsLeftWhenItIsTold_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestCompositorProgram::nothingIsLeftWhenItIsTold()
{
    QFETCH(int, signalNumber);
    const QString mark = m_folder.filePath(QStringLiteral("typing"));
    QFile::remove(mark);
    ChildProcess process;
    start(process, {QStringLiteral("--type"), QStringLiteral("29")},
          "touch '" + QFile::encodeName(mark) + "'\nexec sleep 60\n");
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(mark), 10000);
    const qint64 processId = process.processId();
    QCOMPARE(foldersOf(processId).size(), 1);
    kill(pid_t(processId), signalNumber);
    QVERIFY(process.waitForFinished(5000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(foldersOf(processId), QStringList());
}

QTEST_GUILESS_MAIN(TestCompositorProgram)
#include "tst_compositorprogram.moc"
