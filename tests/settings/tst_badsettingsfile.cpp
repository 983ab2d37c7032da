// A settings file in every bad state: reads give what can still be read or the default, writes do what is
// possible, nothing crashes or hangs, and what other programs keep in the file survives.
//
// Each row runs in a fresh process, which has cached nothing of the file.
#include "otherapplication.h"
#include "settingsfile.h"

#include <QtTest/QtTest>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// "Quick" for a 10 MB file with a sanitizer on a busy machine; a hang is 32 s.
constexpr qint64 quickMilliseconds = 20000;

/// Makes the bad state; false when this machine cannot have it.
using Preparation = std::function<bool()>;

bool makeFolder()
{
    return QDir().mkpath(SettingsFile::folder());
}

QByteArray path()
{
    return QFile::encodeName(SettingsFile::path());
}

QByteArray otherPath()
{
    return QFile::encodeName(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/target.ini"));
}

QByteArray manyKeys(int bytes)
{
    QByteArray result("[Other]\n");
    for (int i = 0; result.size() < bytes; ++i)
        result += "key" + QByteArray::number(i) + "=some text that another program keeps here\n";
    return result;
}

} // namespace

Q_DECLARE_METATYPE(Preparation)

class TestBadSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();

    void applicationGoesOn_data();
    void applicationGoesOn();
    void readOnlyFileLosesNothingOfWhatItHolds();
    void fullDiskLosesNothing_data();
    void fullDiskLosesNothing();
    void fullDiskIsSeenForValuesThatAreNoTextToo();
    void fileOfOneLongLineSurvivesOurWrite();
    void fileIsWrittenWholeOrNotAtAll();

private:
    static void cleanUp();
};

void TestBadSettingsFile::cleanUp()
{
    SettingsFile::removeAll();
    QFile::remove(QFile::decodeName(otherPath()));
}

void TestBadSettingsFile::init()
{
    cleanUp();
}

void TestBadSettingsFile::cleanupTestCase()
{
    cleanUp();
}

void TestBadSettingsFile::applicationGoesOn_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QVariant>("brightness"); ///< what getSetting("brightnessLevel", 7) gives
    QTest::addColumn<uint>("property"); ///< settingDisplayBrightness
    QTest::addColumn<bool>("isWritten"); ///< whether a value that is set reaches the file
    QTest::addColumn<QList<QByteArray>>("survivors"); ///< lines that are still there after the write

    const QVariant absent(7);
    const QVariant three(QStringLiteral("3"));
    const auto row = [](const char *name, const Preparation &prepare, const QVariant &brightness,
                        uint property, bool isWritten, const QList<QByteArray> &survivors = {}) {
        QTest::newRow(name) << prepare << brightness << property << isWritten << survivors;
    };
    const auto bytes = [](const QByteArray &content) {
        return Preparation([content] { return SettingsFile::write(content); });
    };

    row("empty", bytes(""), absent, 7, true);
    row("line ends alone", bytes("\n\n\r\n\n"), absent, 7, true);
    row("spaces alone", bytes("     \n   "), absent, 7, true);
    row("NUL bytes", bytes(QByteArray(4096, '\0')), absent, 7, true);
    row("NUL bytes behind a key", bytes("[display]\nbrightnessLevel=3\n" + QByteArray(4096, '\0')), three, 3,
        true);
    row("cut in a section's name", bytes("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n[loca"), three, 3,
        true, {"[Other]", "key=kept"});
    row("cut in a key", bytes("[display]\nbrightnessLevel=3\n[locale]\nlangu"), three, 3, true);
    row("cut in a value", bytes("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n[locale]\nlanguage=\"en"),
        three, 3, true, {"[Other]", "key=kept"});
    row("cut in an escape", bytes("[display]\nbrightnessLevel=3\n[locale]\nlanguage=\\x"), three, 3, true);
    row("cut behind a backslash", bytes("[display]\nbrightnessLevel=3\n[locale]\nlanguage=a\\"), three, 3,
        true);
    row("no line end at the end", bytes("[display]\nbrightnessLevel=3"), three, 3, true);
    row("carriage returns", bytes("[Other]\r\nkey=kept\r\n\r\n[display]\r\nbrightnessLevel=3\r\n"), three, 3,
        true, {"[Other]", "key=kept"});
    row("carriage returns alone", bytes("[Other]\rkey=kept\r[display]\rbrightnessLevel=3\r"), three, 3, true,
        {"[Other]", "key=kept"});
    row("byte order mark", bytes("\xef\xbb\xbf[display]\nbrightnessLevel=3\n"), three, 3, true);
    row("comments", bytes("; a comment\n[display]\n; another\nbrightnessLevel=3\n"), three, 3, true);
    row("key before any section", bytes("key=kept\n[display]\nbrightnessLevel=3\n"), three, 3, true,
        {"key=kept"});
    row("key twice", bytes("[display]\nbrightnessLevel=1\nbrightnessLevel=3\n"), three, 3, true);
    row("section twice",
        bytes("[display]\nbrightnessLevel=1\n[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n"), three, 3,
        true, {"[Other]", "key=kept"});
    row("spaces around the equals sign", bytes("[display]\n  brightnessLevel  =  3  \n"), three, 3, true);
    row("lines that are no keys", bytes("what is this\n[display]\nbrightnessLevel=3\n???\n=\n==\n]\n"), three,
        3, true);
    row("binary rubbish", Preparation([] {
            QByteArray rubbish(65536, '\0');
            quint32 state = 1;
            for (char &byte : rubbish) {
                state = state * 1664525u + 1013904223u;
                byte = char(state >> 24);
            }
            return SettingsFile::write(rubbish);
        }),
        absent, 7, true);
    row("invalid UTF-8", bytes("[Other]\nkey=\xff\xfe\xc3\n[display]\nbrightnessLevel=3\n"), three, 3, true,
        {"[Other]"});
    row("another type of value", bytes("[display]\nbrightnessLevel=@ByteArray(3)\n"),
        QVariant(QByteArray("3")), 3, true);
    row("a value that nothing can hold", bytes("[display]\nbrightnessLevel=@Variant(\\0\\0\\0\\xff)\n"),
        QVariant(), 0, true);
    row("text", bytes("[display]\nbrightnessLevel=bright\n"), QVariant(QStringLiteral("bright")), 0, true);
    row("a list", bytes("[display]\nbrightnessLevel=3, 4\n"),
        QVariant(QStringList{QStringLiteral("3"), QStringLiteral("4")}), 0, true);
    row("nothing", bytes("[display]\nbrightnessLevel=@Invalid()\n"), QVariant(), 0, true);
    row("10 MB of another program", Preparation([] {
            return SettingsFile::write(manyKeys(10 * 1024 * 1024) + "[display]\nbrightnessLevel=3\n");
        }),
        three, 3, true,
        {"[Other]", "key0=some text that another program keeps here",
         "key170000=some text that another program keeps here"});
    row("10 MB value", Preparation([] {
            return SettingsFile::write(
                "[display]\nbrightnessLevel=3\n[Other]\nkey=" + QByteArray(10 * 1024 * 1024, 'x') + "\n");
        }),
        three, 3, true, {"[Other]"});
    row("10 MB without a line end",
        Preparation([] { return SettingsFile::write(QByteArray(10 * 1024 * 1024, 'x')); }), absent, 7, true);
    row("10 MB of NUL bytes",
        Preparation([] { return SettingsFile::write(QByteArray(10 * 1024 * 1024, '\0')); }), absent, 7, true);
    row("written by another program",
        bytes("[Other]\nkey=kept\nlist=a, "
              "b\n[display]\nbrightnessLevel=3\ncontrast=4\n[privacy]\nsendAnalytics=kept\n"),
        three, 3, true,
        {"[Other]", "key=kept", "list=a, b", "contrast=4", "[privacy]", "sendAnalytics=kept"});

    row("absent", Preparation([] { return true; }), absent, 7, true);
    row("folder without a file", Preparation(makeFolder), absent, 7, true);
    row("a folder in its place", Preparation([] { return QDir().mkpath(SettingsFile::path()); }), absent, 7,
        false);
    row("a full folder in its place",
        Preparation([] { return QDir().mkpath(SettingsFile::path() + QStringLiteral("/inner")); }), absent, 7,
        false);
    row("a file in the folder's place", Preparation([] {
            QFile file(SettingsFile::folder());
            return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
        }),
        absent, 7, false);
    row("a link to nowhere", Preparation([] { return makeFolder() && symlink("nowhere", path()) == 0; }),
        absent, 7, true);
    row("a link to nowhere in a missing folder",
        Preparation([] { return makeFolder() && symlink("missing/nowhere", path()) == 0; }), absent, 7,
        false);
    row("a link to itself",
        Preparation([] { return makeFolder() && symlink("Brindlemark.ini", path()) == 0; }), absent, 7, true);
    row("a link to another file", Preparation([] {
            QFile file(QFile::decodeName(otherPath()));
            return makeFolder() && file.open(QIODevice::WriteOnly)
                && file.write("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n") > 0
                && symlink(otherPath(), path()) == 0;
        }),
        three, 3, true, {"[Other]", "key=kept"});
    row("a link to the folder that is a link to nowhere",
        Preparation([] { return symlink("nowhere", QFile::encodeName(SettingsFile::folder())) == 0; }),
        absent, 7, false);
}

void TestBadSettingsFile::applicationGoesOn()
{
    QFETCH(Preparation, prepare);
    QFETCH(QVariant, brightness);
    QFETCH(uint, property);
    QFETCH(bool, isWritten);
    QFETCH(QList<QByteArray>, survivors);
    QVERIFY(prepare());
    QElapsedTimer timer;
    timer.start();

    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());
    const QVariant read = application.get(QStringLiteral("brightnessLevel"), 7).value;
    QCOMPARE(read.userType(), brightness.userType());
    QCOMPARE(read, brightness);
    QCOMPARE(application.property(QStringLiteral("settingDisplayBrightness")), QVariant(property));
    QCOMPARE(application.property(QStringLiteral("settingFirstLaunchAppList")), QVariant(QStringList()));

    QCOMPARE(application.set(QStringLiteral("units"), 1).exception, QString());
    QCOMPARE(application.set(QStringLiteral("sendAnalytics"), false).exception, QString());
    QCOMPARE(application.set(QStringLiteral("appFirstLaunchList"), QStringLiteral("A")).exception, QString());
    QCOMPARE(application.get(QStringLiteral("timezone"), 1).value, QVariant(1));
    QVERIFY(application.isRunning());

    const QList<QByteArray> lines = SettingsFile::content().split('\n');
    QCOMPARE(lines.contains("units=1"), isWritten);
    QCOMPARE(lines.contains("sendAnalytics=false"), isWritten);
    QCOMPARE(lines.contains("appFirstLaunchList=A"), isWritten);
    for (const QByteArray &line : qAsConst(survivors))
        QVERIFY2(lines.contains(line), line.constData());

    // Another process reads back what has reached the file, and the old value beside it.
    OtherApplication reader;
    QCOMPARE(reader.construct().exception, QString());
    QCOMPARE(reader.get(QStringLiteral("units"), QStringLiteral("absent")).value,
             QVariant(isWritten ? QStringLiteral("1") : QStringLiteral("absent")));
    QCOMPARE(reader.get(QStringLiteral("brightnessLevel"), 7).value, brightness);
    QVERIFY2(timer.elapsed() < quickMilliseconds, qPrintable(QString::number(timer.elapsed())));
}

// A root process writes to every file, whatever its mode.
void TestBadSettingsFile::readOnlyFileLosesNothingOfWhatItHolds()
{
    QVERIFY(SettingsFile::write("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n"));
    const QByteArray folder = QFile::encodeName(SettingsFile::folder());
    QVERIFY(chmod(path(), 0444) == 0);
    QVERIFY(chmod(folder, 0555) == 0);
    const auto restore = qScopeGuard([&folder] { chmod(folder, 0755); });
    const bool isWritableAnyway = access(folder, W_OK) == 0;

    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());
    QCOMPARE(application.get(QStringLiteral("brightnessLevel"), 7).value, QVariant(QStringLiteral("3")));
    const OtherApplication::Reply reply = application.set(QStringLiteral("units"), 1);
    QCOMPARE(reply.exception, QString());
    QVERIFY2(reply.milliseconds < quickMilliseconds, qPrintable(QString::number(reply.milliseconds)));
    QVERIFY(SettingsFile::content().contains("key=kept\n"));
    QVERIFY(SettingsFile::content().contains("brightnessLevel=3\n"));
    QCOMPARE(SettingsFile::content().contains("units=1\n"), isWritableAnyway);
}

// A limit of the file size stands in for a full disk, since it holds for a root process too.
void TestBadSettingsFile::fullDiskLosesNothing_data()
{
    QTest::addColumn<int>("bytes");
    QTest::newRow("no room at all") << 0;
    QTest::newRow("room for the lock, not for the file") << 500;
    QTest::newRow("room for all but the end of the file") << 1020;
}

void TestBadSettingsFile::fullDiskLosesNothing()
{
    QFETCH(int, bytes);
    const QByteArray content = "[Other]\nkey=" + QByteArray(1000, 'x') + "\n";
    QVERIFY(SettingsFile::write(content));
    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());

    application.limitFileSize(bytes);
    const OtherApplication::Reply reply = application.set(QStringLiteral("units"), 1);
    QCOMPARE(reply.exception, QString());
    QVERIFY2(reply.milliseconds < quickMilliseconds, qPrintable(QString::number(reply.milliseconds)));
    QCOMPARE(SettingsFile::content(), content);

    application.limitFileSize(-1);
    QCOMPARE(application.set(QStringLiteral("units"), 0).exception, QString());
    QCOMPARE(SettingsFile::content(), content + "\n[locale]\nunits=0\n");
    QCOMPARE(QDir(SettingsFile::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("Brindlemark.ini")});
}

void TestBadSettingsFile::fullDiskIsSeenForValuesThatAreNoTextToo()
{
    const QByteArray content = "[Other]\nkey=kept\n";
    QVERIFY(SettingsFile::write(content));
    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());
    application.limitFileSize(4000);
    const QVariantMap map = {{QStringLiteral("a"), QString(3990, QLatin1Char('x'))}};
    QCOMPARE(application.set(QStringLiteral("timezone"), map).exception, QString());
    QCOMPARE(SettingsFile::content(), content);
}

void TestBadSettingsFile::fileOfOneLongLineSurvivesOurWrite()
{
    const QByteArray line = "key=" + QByteArray(1024 * 1024, 'x');
    QVERIFY(SettingsFile::write("[Other]\n" + line + "\n"));
    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());
    QCOMPARE(application.set(QStringLiteral("units"), 1).exception, QString());
    QCOMPARE(SettingsFile::content(), "[Other]\n" + line + "\n\n[locale]\nunits=1\n");
}

// A reader never finds a part of the file: it is replaced and not rewritten.
void TestBadSettingsFile::fileIsWrittenWholeOrNotAtAll()
{
    QVERIFY(SettingsFile::write("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n"));
    QFile before(SettingsFile::path());
    QVERIFY(before.open(QIODevice::ReadOnly));
    OtherApplication application;
    QCOMPARE(application.construct().exception, QString());
    QCOMPARE(application.set(QStringLiteral("units"), 1).exception, QString());
    QCOMPARE(before.readAll(), QByteArray("[Other]\nkey=kept\n[display]\nbrightnessLevel=3\n"));
    QCOMPARE(SettingsFile::content(),
             QByteArray("[Other]\nkey=kept\n\n[display]\nbrightnessLevel=3\n\n[locale]\nunits=1\n"));
    QCOMPARE(QDir(SettingsFile::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("Brindlemark.ini")});
}

QTEST_GUILESS_MAIN(TestBadSettingsFile)
#include "tst_badsettingsfile.moc"
