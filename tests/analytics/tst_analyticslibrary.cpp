// The exported class as an application meets it: where events land, what a broken folder costs, and their
// price.
//
// Each case runs in a process of its own, this program with arguments, because the library looks up the
// user's data folder once a process.
#include "analyticslibrary.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QJsonDocument>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <fcntl.h>
#include <unistd.h>

namespace {

QJsonObject zoomLevelChange(const QString &value)
{
    return {
        {QStringLiteral("settingName"), QStringLiteral("zoomLevel")},
        {QStringLiteral("newValue"), value},
        {QStringLiteral("eventType"), QStringLiteral("Setting_Change")},
        {QStringLiteral("sessionId"), QStringLiteral("s")},
    };
}

int sendEvents(int count)
{
    for (int i = 0; i < count; ++i)
        AnalyticsLibrary::sendAnalyticHit(AnalyticsLibrary::SettingChange,
                                          zoomLevelChange(QString::number(i)));
    return 0;
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestAnalyticsLibrary : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aSettingChangeHasNumberSix();
    void anEventLandsInTheUsersDataFolder_data();
    void anEventLandsInTheUsersDataFolder();
    void theTimeIsTheTimeOfTheCall();
    void aFolderThatCannotBeWrittenIsLoggedOnceAProcess();
    void anEventWaitsForALockUntilTheProcessEnds();
    void costOfOneEvent();
    void costOfTheBareFileOperations();

private:
    bool send(int count);

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    QByteArray m_log;
};

void TestAnalyticsLibrary::initTestCase()
{
    // For the events that this process itself sends.
    static const QTemporaryDir ownHome;
    QVERIFY(ownHome.isValid());
    qputenv("HOME", QFile::encodeName(ownHome.path()));
    qputenv("XDG_DATA_HOME", QFile::encodeName(ownHome.path()));
}

void TestAnalyticsLibrary::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("HOME"), m_home->path());
    m_environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home->filePath(QStringLiteral("data")));
}

void TestAnalyticsLibrary::cleanup()
{
    m_home.reset();
}

bool TestAnalyticsLibrary::send(int count)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_home->path());
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--send-events"), QString::number(count)});
    if (!process.waitForFinished())
        return false;
    m_log = process.readAllStandardError();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

void TestAnalyticsLibrary::aSettingChangeHasNumberSix()
{
    QCOMPARE(int(AnalyticsLibrary::SettingChange), 6);
    QVERIFY(send(1));
    const QByteArray line =
        contentOf(m_home->filePath(QStringLiteral("data/Corvanta/analytics/events.jsonl")));
    QVERIFY2(line.contains(",\"hitType\":6,"), line.constData());
}

void TestAnalyticsLibrary::anEventLandsInTheUsersDataFolder_data()
{
    QTest::addColumn<QByteArray>("dataHome"); // @ is the home folder
    QTest::addColumn<QString>("spool");

    QTest::newRow("set") << QByteArray("@/data") << "data/Corvanta/analytics/events.jsonl";
    QTest::newRow("set, slash at its end") << QByteArray("@/data/") << "data/Corvanta/analytics/events.jsonl";
    QTest::newRow("with blanks and beyond ASCII")
        << QByteArray("@/d \xc3\xa4;$(x)'")
        << QStringLiteral("d \u00e4;$(x)'/Corvanta/analytics/events.jsonl");
    QTest::newRow("not set") << QByteArray() << ".local/share/Corvanta/analytics/events.jsonl";
    QTest::newRow("relative counts as not set")
        << QByteArray("data") << ".local/share/Corvanta/analytics/events.jsonl";
}

void TestAnalyticsLibrary::anEventLandsInTheUsersDataFolder()
{
    QFETCH(QByteArray, dataHome);
    QFETCH(QString, spool);

    m_environment.remove(QStringLiteral("XDG_DATA_HOME"));
    if (!dataHome.isEmpty())
        m_environment.insert(QStringLiteral("XDG_DATA_HOME"),
                             QString::fromUtf8(dataHome).replace(QLatin1Char('@'), m_home->path()));
    QVERIFY(send(2));
    QCOMPARE(m_log, QByteArray());

    const QList<QByteArray> lines = contentOf(m_home->filePath(spool)).split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY2(
        lines.at(0).endsWith(",\"hitType\":6,\"hit\":{\"eventType\":\"Setting_Change\",\"newValue\":\"0\","
                             "\"sessionId\":\"s\",\"settingName\":\"zoomLevel\"}}"),
        lines.at(0).constData());
    QVERIFY2(lines.at(1).contains("\"newValue\":\"1\""), lines.at(1).constData());
    QCOMPARE(lines.at(2), QByteArray());
}

void TestAnalyticsLibrary::theTimeIsTheTimeOfTheCall()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    QVERIFY(send(1));
    const QDateTime after = QDateTime::currentDateTimeUtc();

    const QByteArray line =
        contentOf(m_home->filePath(QStringLiteral("data/Corvanta/analytics/events.jsonl")));
    const QString text = QJsonDocument::fromJson(line).object().value(QLatin1String("time")).toString();
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    QVERIFY2(text.endsWith(QLatin1Char('Z')) && time >= before && time <= after, qPrintable(text));
}

void TestAnalyticsLibrary::aFolderThatCannotBeWrittenIsLoggedOnceAProcess()
{
    const QString data = m_home->filePath(QStringLiteral("data"));
    QFile inTheWay(data);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(send(50));
    QCOMPARE(m_log,
             "AnalyticsLibrary: cannot keep events in " + QFile::encodeName(data)
                 + "/Corvanta/analytics: Not a directory. Events are dropped, further ones silently.\n");
}

void TestAnalyticsLibrary::anEventWaitsForALockUntilTheProcessEnds()
{
    QVERIFY(send(1));
    const QString folder = m_home->filePath(QStringLiteral("data/Corvanta/analytics"));
    QProcess sender;
    sender.setProcessEnvironment(m_environment);
    // The holder ends between the two events of the sender and its end.
    sender.start(QCoreApplication::applicationFilePath(),
                 {QStringLiteral("--send-events-while-locked"), folder + QStringLiteral("/events.lock")});
    QVERIFY(sender.waitForFinished());
    QCOMPARE(sender.readAllStandardError(), QByteArray());
    QCOMPARE(sender.readAllStandardOutput(), QByteArray("1 line while locked\n"));
    QCOMPARE(contentOf(folder + QStringLiteral("/events.jsonl")).count('\n'), 3);
}

void TestAnalyticsLibrary::costOfOneEvent()
{
    const QJsonObject hit = zoomLevelChange(QStringLiteral("3"));
    QBENCHMARK
    {
        AnalyticsLibrary::sendAnalyticHit(AnalyticsLibrary::SettingChange, hit);
    }
}

void TestAnalyticsLibrary::costOfTheBareFileOperations()
{
    const QByteArray file = QFile::encodeName(m_home->filePath(QStringLiteral("bare")));
    const QByteArray line(150, '.');
    ssize_t written = 0;
    QBENCHMARK
    {
        const int descriptor = open(file.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
        written = write(descriptor, line.constData(), size_t(line.size()));
        close(descriptor);
    }
    QCOMPARE(written, ssize_t(150));
}

namespace {

// Sends two events while another process holds the lock, which lets go before this one ends.
int sendEventsWhileLocked(const QString &lock)
{
    QProcess holder;
    holder.start(QStringLiteral("flock"),
                 {lock, QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("echo held; exec cat")});
    if (!holder.waitForReadyRead())
        return 1;
    sendEvents(2);
    const QByteArray spool = contentOf(QFileInfo(lock).path() + QStringLiteral("/events.jsonl"));
    printf("%d line while locked\n", spool.count('\n'));
    holder.closeWriteChannel();
    return holder.waitForFinished() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--send-events") == 0)
        return sendEvents(atoi(argv[2]));
    if (argc == 3 && qstrcmp(argv[1], "--send-events-while-locked") == 0)
        return sendEventsWhileLocked(QFile::decodeName(argv[2]));
    TestAnalyticsLibrary test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_analyticslibrary.moc"
