// Two processes that write different keys of the settings file with values of the same length, in turn and at
// the same time: no write is undone, and each sees at once what the other has written.
//
// A plain QSettings in the place of the library loses writes on a fast disk. It runs as a row of its own,
// whose count is printed and not judged, to show what the other rows would catch.
#include "childprocess.h"
#include "zbsettingsmain.h"

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

constexpr int patienceMilliseconds = 120000;

/// What one writer found while it wrote.
struct Count
{
    int undone = 0; ///< own writes that were gone again at the next turn
    int unseen = 0; ///< the other's last write was not in the file
    int stale = 0; ///< the other's last write was in the file, but reading did not give it
};

/// How a row's processes read and write.
class Store
{
public:
    virtual ~Store() = default;
    virtual void write(const QString &key, const QString &value) = 0;
    virtual QString read(const QString &key) = 0;
};

class LibraryStore : public Store
{
public:
    void write(const QString &key, const QString &value) override { m_settings.setSetting(key, value); }
    QString read(const QString &key) override { return m_settings.getSetting(key).toString(); }

private:
    ZBSettingsMain m_settings{nullptr, false};
};

class PlainStore : public Store
{
public:
    void write(const QString &key, const QString &value) override
    {
        QSettings file(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Corvanta"),
                       QStringLiteral("Brindlemark"));
        file.setValue(QStringLiteral("locale/") + key, value);
    }
    QString read(const QString &key) override
    {
        const QSettings file(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Corvanta"),
                             QStringLiteral("Brindlemark"));
        return file.value(QStringLiteral("locale/") + key).toString();
    }
};

std::unique_ptr<Store> makeStore(const QString &kind)
{
    if (kind == QLatin1String("library"))
        return std::make_unique<LibraryStore>();
    return std::make_unique<PlainStore>();
}

QString valueOf(int number)
{
    return QStringLiteral("value%1").arg(number, 6, 10, QLatin1Char('0'));
}

/// What the file holds for \a key, read without QSettings.
QString valueInFile(const QString &key)
{
    QFile file(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Corvanta/Brindlemark.ini"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray start = key.toLatin1() + '=';
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(start))
            return QString::fromLatin1(line.mid(start.size()));
    }
    return {};
}

/// Writes \a own, in turn with the process at the other ends of the pipes, which writes \a other.
Count writeInTurn(Store &store, const QString &own, const QString &other, int writes, bool isFirst,
                  int turnIn, int turnOut)
{
    Count count;
    char turn = 0;
    for (int i = 0; i < writes; ++i) {
        if (!(isFirst && i == 0) && read(turnIn, &turn, 1) != 1)
            break;
        const int lastOfOther = isFirst ? i - 1 : i;
        if (i > 0 && valueInFile(own) != valueOf(i - 1))
            ++count.undone;
        if (lastOfOther >= 0) {
            const bool isInFile = valueInFile(other) == valueOf(lastOfOther);
            if (!isInFile)
                ++count.unseen;
            else if (store.read(other) != valueOf(lastOfOther))
                ++count.stale;
        }
        store.write(own, valueOf(i));
        if (write(turnOut, &turn, 1) != 1)
            break;
    }
    return count;
}

/// Writes \a own as fast as it goes, while the other process does the same with its key.
Count writeFreely(Store &store, const QString &own, int writes, int turnIn, int turnOut)
{
    // Both begin when both are there.
    char ready = 0;
    if (write(turnOut, &ready, 1) != 1 || read(turnIn, &ready, 1) != 1)
        return {};
    Count count;
    for (int i = 0; i < writes; ++i) {
        if (i > 0 && valueInFile(own) != valueOf(i - 1))
            ++count.undone;
        store.write(own, valueOf(i));
    }
    return count;
}

/// The writing process: what it found goes to its output.
int writerProcess(const QStringList &arguments)
{
    const bool isInTurn = arguments.at(0) == QLatin1String("in turn");
    const std::unique_ptr<Store> store = makeStore(arguments.at(1));
    const QString own = arguments.at(2);
    const QString other = arguments.at(3);
    const int writes = arguments.at(4).toInt();
    const bool isFirst = arguments.at(5) == QLatin1String("first");
    const int turnIn = arguments.at(6).toInt();
    const int turnOut = arguments.at(7).toInt();
    const Count count = isInTurn ? writeInTurn(*store, own, other, writes, isFirst, turnIn, turnOut)
                                 : writeFreely(*store, own, writes, turnIn, turnOut);
    std::printf("%d %d %d\n", count.undone, count.unseen, count.stale);
    return 0;
}

/// A pipe whose ends started processes inherit.
struct Pipe
{
    Pipe() { isOpen = pipe(ends.data()) == 0; }
    ~Pipe() { closeEnds(); }
    void closeEnds()
    {
        if (isOpen) {
            close(ends[0]);
            close(ends[1]);
        }
        isOpen = false;
    }
    std::array<int, 2> ends{-1, -1};
    bool isOpen = false;

private:
    Q_DISABLE_COPY(Pipe)
};

/// The fastest place there is: lost writes need more than one write within a millisecond.
QString fastFolderTemplate()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath())
        + QStringLiteral("/zbtwowriters-XXXXXX");
}

} // namespace

class TestTwoWriters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost_data();
    void nothingIsLost();
};

void TestTwoWriters::nothingIsLost_data()
{
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("store");
    QTest::addColumn<bool>("inMemory");
    QTest::addColumn<int>("writes");
    QTest::addColumn<bool>("isJudged");
    const QString inTurn = QStringLiteral("in turn");
    const QString freely = QStringLiteral("freely");
    const QString library = QStringLiteral("library");
    const QString plain = QStringLiteral("plain QSettings");
    QTest::newRow("in turn") << inTurn << library << true << 2000 << true;
    QTest::newRow("in turn, on disk") << inTurn << library << false << 200 << true;
    QTest::newRow("freely") << freely << library << true << 2000 << true;
    QTest::newRow("freely, on disk") << freely << library << false << 200 << true;
    QTest::newRow("in turn, plain QSettings for comparison") << inTurn << plain << true << 2000 << false;
}

void TestTwoWriters::nothingIsLost()
{
    QFETCH(QString, order);
    QFETCH(QString, store);
    QFETCH(bool, inMemory);
    QFETCH(int, writes);
    QFETCH(bool, isJudged);

    const QTemporaryDir folder(inMemory ? fastFolderTemplate()
                                        : QDir::tempPath() + QStringLiteral("/zbtwowriters-XXXXXX"));
    QVERIFY(folder.isValid());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());

    Pipe toSecond;
    Pipe toFirst;
    QVERIFY(toSecond.isOpen && toFirst.isOpen);
    const QStringList keys{QStringLiteral("language"), QStringLiteral("keyboardLayout")};
    std::array<ChildProcess, 2> writers;
    for (int i = 0; i < 2; ++i) {
        const int turnIn = i == 0 ? toFirst.ends[0] : toSecond.ends[0];
        const int turnOut = i == 0 ? toSecond.ends[1] : toFirst.ends[1];
        ChildProcess &writer = writers[size_t(i)];
        writer.setProcessEnvironment(environment);
        writer.start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--write"), order, store, keys.at(i), keys.at(1 - i),
                      QString::number(writes), i == 0 ? QStringLiteral("first") : QStringLiteral("second"),
                      QString::number(turnIn), QString::number(turnOut)});
        QVERIFY(writer.waitForStarted());
    }

    QByteArray found;
    for (ChildProcess &writer : writers) {
        QVERIFY(writer.waitForFinished(patienceMilliseconds));
        QCOMPARE(writer.exitStatus(), QProcess::NormalExit);
        QCOMPARE(writer.exitCode(), 0);
        found += writer.readAllStandardOutput();
    }

    QFile file(folder.filePath(QStringLiteral("Corvanta/Brindlemark.ini")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray last = valueOf(writes - 1).toLatin1();
    const QByteArray whole = "[locale]\nkeyboardLayout=" + last + "\nlanguage=" + last + "\n";
    if (!isJudged) {
        qInfo("undone, unseen and stale of %d writes each: %s", writes, found.simplified().constData());
        return;
    }
    QCOMPARE(found, QByteArray("0 0 0\n0 0 0\n"));
    QCOMPARE(file.readAll(), whole);
    QCOMPARE(QDir(folder.filePath(QStringLiteral("Corvanta")))
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("Brindlemark.ini")});
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--write"))
        return writerProcess(arguments.mid(2));
    TestTwoWriters test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_twowriters.moc"
