// The launcher as a QProcess. All waits have an end.
#include "launch.h"

#include "processtable.h"

#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <csignal>

namespace {

constexpr int waitMilliseconds = 30000;

} // namespace

QString launcher()
{
    return qEnvironmentVariable("LAUNCHER_UNDER_TEST", QStringLiteral(LAUNCHER));
}

QByteArray reasonAgainstLaunches()
{
    Launch launch;
    launch.run({QStringLiteral("--without-daemon"), QStringLiteral("true")});
    return launch.exitStatus() == 77 ? launch.readErrors().trimmed() : QByteArray();
}

bool launchesAreBusOnly()
{
    return launcher() == QStringLiteral(BUS_ONLY_LAUNCHER);
}

Launch::Launch()
    // Short enough for the device to accept it, wherever the tests themselves have their temporary files.
    : m_place(QStringLiteral("/tmp/zbvt-XXXXXX"))
{
    m_environment.insert(QStringLiteral("TMPDIR"), m_place.path());
}

Launch::~Launch()
{
    m_process.kill();
    m_process.waitForFinished(waitMilliseconds);
    const auto isGone = [this] { return processes().isEmpty() && folders().isEmpty(); };
    if (QTest::qWaitFor(isGone, waitMilliseconds))
        return;
    qWarning() << "left behind:" << processes() << folders();
    for (const qint64 process : processesThatMention(place()))
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

QStringList Launch::folders() const
{
    return QDir(place()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QStringList Launch::processes() const
{
    QStringList result;
    for (const qint64 process : processesThatMention(place()))
        result.append(describeProcess(process));
    return result;
}

void Launch::startProgram(const QString &program, const QStringList &arguments)
{
    m_process.setProcessEnvironment(m_environment);
    m_process.start(program, arguments);
    QVERIFY2(m_process.waitForStarted(waitMilliseconds), qPrintable(m_process.errorString()));
}

void Launch::start(const QStringList &arguments)
{
    startProgram(launcher(), arguments);
}

void Launch::startFromShell(const QStringList &arguments)
{
    const QString script = QStringLiteral("\"$@\" & wait");
    startProgram(QStringLiteral("/bin/sh"),
                 QStringList{QStringLiteral("-c"), script, QStringLiteral("sh"), launcher()} + arguments);
}

void Launch::run(const QStringList &arguments)
{
    start(arguments);
    QVERIFY(waitForEnd());
}

QByteArray Launch::readLine()
{
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(waitMilliseconds))
            return {};
    }
    return m_process.readLine().chopped(1);
}

void Launch::sendSignal(int number) const
{
    QVERIFY(processId() > 0);
    QCOMPARE(::kill(static_cast<pid_t>(processId()), number), 0);
}

bool Launch::waitForEnd()
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(waitMilliseconds);
}

int Launch::exitStatus() const
{
    const bool ended =
        m_process.state() == QProcess::NotRunning && m_process.exitStatus() == QProcess::NormalExit;
    return ended ? m_process.exitCode() : -1;
}
