// Choosing a keyboard layout rewrites the compositor's environment file, in place and byte for byte.
//
// The layouts are the test's own. The machine's storage is not synced: sync() is watched instead.
#include "emissionrecorder.h"
#include "filebytes.h"
#include "heartbeat.h"
#include "keyboardenvironment.h"
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "scriptedlocale.h"
#include "settingsfile.h"
#include "systemcalls.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <limits>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using ScriptedLocale::script;

namespace {

const QString firstLine = QStringLiteral("failed to open wayland file");
const QString secondLine = QStringLiteral("failed to reopen wayland file");

constexpr int german = 3;
constexpr int strange = -7;
constexpr int nonLatin = 40;
constexpr int withBackslash = 41;

QMap<int, ZBLocaleLanguages::ZBKeyboardInfo> layouts()
{
    const auto info = [](const char *layout, const char *variant) {
        return ZBLocaleLanguages::ZBKeyboardInfo{QStringLiteral("not read"), QString::fromUtf8(layout),
                                                 QString::fromUtf8(variant), QStringLiteral("not read")};
    };
    return {{0, info("us", "")},
            {german, info("de", "nodeadkeys")},
            {strange, info("gb", "extd")},
            {nonLatin, info("日é", "Ж")},
            {withBackslash, info("\\1", "\\0")}};
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    lstat(QFile::encodeName(path).constData(), &status);
    return status;
}

} // namespace

class TestKeyboardFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fileIsRewrittenByteForByte_data();
    void fileIsRewrittenByteForByte();
    void textBeyondLatin1IsLostInTheSecondChange();
    void layoutIsLookedUpByItsKey_data();
    void layoutIsLookedUpByItsKey();
    void layoutTableIsFetchedOnceAndAfresh();
    void fileIsRewrittenInPlace();
    void symbolicLinkIsFollowed();
    void danglingLinkMakesItsTarget();
    void missingFileIsMade();
    void contentIsOnTheStorageBeforeTheCallReturns();
    void failedFirstOpenLeavesTheTwoLinesOnly();
    void failedSecondOpenChangesNothing();
    void bothOpensFailed();
    void directoryInItsPlaceChangesNothing();
    void readOnlyFileIsLeftAloneButByRoot();
    void choiceDoesNotHoldTheEventLoop();
    void nothingElseHappens();

private:
    void choose(int index) { m_settings->setKeyboardLanguage(index); }

    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<MessageLog> m_log;
};

void TestKeyboardFile::init()
{
    SettingsFile::removeAll();
    QVERIFY(KeyboardEnvironment::clear());
    script() = {};
    script().layouts = layouts();
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_log = std::make_unique<MessageLog>();
    SystemCalls::reset();
}

void TestKeyboardFile::cleanup()
{
    m_log.reset();
    m_settings.reset();
    SystemCalls::reset();
    KeyboardEnvironment::clear();
    KeyboardEnvironment::write("XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=\n");
    SettingsFile::removeAll();
}

void TestKeyboardFile::fileIsRewrittenByteForByte_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const QByteArray &before, int index, const QByteArray &after) {
        QTest::newRow(name) << before << index << after;
    };
    row("empty file", "", german, "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("neither key", "A=1\n", german, "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("layout before variant", "A=1\nXKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=dvorak\nB=2\n", german,
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("variant before layout", "A=1\nXKB_DEFAULT_VARIANT=dvorak\nXKB_DEFAULT_LAYOUT=us\nB=2\n", german,
        "A=1\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("empty variant", "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n", 0,
        "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=\n");
    row("less-than sign", "XKB_DEFAULT_LAYOUT=us\nA=1\n<B\nXKB_DEFAULT_VARIANT=x\nC=3\n", german,
        "XKB_DEFAULT_LAYOUT=de\n<B\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("CRLF", "A=1\r\nXKB_DEFAULT_LAYOUT=us\r\nB=2\r\n", german,
        "A=1\r\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("no last line end", "XKB_DEFAULT_LAYOUT=us", german,
        "XKB_DEFAULT_LAYOUT=usXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("shorter than before", "XKB_DEFAULT_LAYOUT=us\n" + QByteArray("A=1\n").repeated(10000), german,
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("longer than a buffer", QByteArray("A=1\n").repeated(100000), german,
        QByteArray("A=1\n").repeated(100000) + "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("Latin-1 text turns into Latin-1", "A=\xc3\xa9\xc3\xbf\n", german,
        "A=\xe9\xff\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("text beyond Latin-1 turns into question marks", "A=\xe6\x97\xa5\xd0\x96\xe2\x82\xac\n", german,
        "A=\?\?\?\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("character beyond 16 bits turns into two", "A=\xf0\x9f\x98\x80\n", german,
        "A=\?\?\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("no UTF-8", "A=\xff\xe9\n", german,
        "A=\?\?\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("byte-order mark is no text",
        "\xef\xbb\xbf"
        "A=1\n",
        german, "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("byte-order mark before the key", "\xef\xbb\xbfXKB_DEFAULT_LAYOUT=us\n", german,
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("byte-order mark further on is text", "A=\xef\xbb\xbf\n", german,
        "A=\?\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("layout name beyond Latin-1", "A=1\n", nonLatin,
        "A=1\nXKB_DEFAULT_LAYOUT=\?\xe9\nXKB_DEFAULT_VARIANT=\?\n");
    row("backslash in the layout name", "XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=x\n", withBackslash,
        "XKB_DEFAULT_LAYOUT=\\1\nXKB_DEFAULT_VARIANT=\\0\n");
    row("NUL byte ends the text", QByteArray("A=1\n\0B=2\nXKB_DEFAULT_LAYOUT=us\n", 31), german,
        "A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("NUL byte first", QByteArray("\0A=1\n", 5), german,
        "XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("NUL byte in the key's value", QByteArray("XKB_DEFAULT_LAYOUT=u\0s\nA=1\n", 27), german,
        "XKB_DEFAULT_LAYOUT=uXKB_DEFAULT_VARIANT=nodeadkeys\n");
    row("other control characters", "A=\x01\x7f\t\n", german,
        "A=\x01\x7f\t\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
}

void TestKeyboardFile::fileIsRewrittenByteForByte()
{
    QFETCH(QByteArray, before);
    QFETCH(int, index);
    QFETCH(QByteArray, after);
    QVERIFY(KeyboardEnvironment::write(before));
    choose(index);
    QCOMPARE(KeyboardEnvironment::content(), after);
    QCOMPARE(m_log->texts(), QStringList());
}

void TestKeyboardFile::textBeyondLatin1IsLostInTheSecondChange()
{
    QVERIFY(KeyboardEnvironment::write("A=\xc3\xa9\n"));
    choose(german);
    choose(german);
    QCOMPARE(KeyboardEnvironment::content(),
             QByteArray("A=\?\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
}

void TestKeyboardFile::layoutIsLookedUpByItsKey_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("content");
    const QByteArray nothing("XKB_DEFAULT_LAYOUT=\nXKB_DEFAULT_VARIANT=\n");
    QTest::newRow("first") << 0 << QByteArray("XKB_DEFAULT_LAYOUT=us\nXKB_DEFAULT_VARIANT=\n");
    QTest::newRow("another") << german
                             << QByteArray("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n");
    QTest::newRow("negative key") << strange
                                  << QByteArray("XKB_DEFAULT_LAYOUT=gb\nXKB_DEFAULT_VARIANT=extd\n");
    QTest::newRow("no key, between keys") << 1 << nothing;
    QTest::newRow("no key, behind the last") << 42 << nothing;
    QTest::newRow("no key, negative") << -1 << nothing;
    QTest::newRow("no key, largest") << std::numeric_limits<int>::max() << nothing;
    QTest::newRow("no key, smallest") << std::numeric_limits<int>::min() << nothing;
}

void TestKeyboardFile::layoutIsLookedUpByItsKey()
{
    QFETCH(int, index);
    QFETCH(QByteArray, content);
    QVERIFY(KeyboardEnvironment::write("XKB_DEFAULT_LAYOUT=fr\nXKB_DEFAULT_VARIANT=bepo\n"));
    choose(index);
    QCOMPARE(KeyboardEnvironment::content(), content);
    QCOMPARE(m_log->texts(), QStringList());
}

void TestKeyboardFile::layoutTableIsFetchedOnceAndAfresh()
{
    script().questions.clear();
    choose(german);
    QCOMPARE(script().questions, QStringList{QStringLiteral("getKeyboardLayoutInfo")});
    script().layouts[german].layout = QStringLiteral("at");
    choose(german);
    QCOMPARE(script().questions.size(), 2);
    QCOMPARE(KeyboardEnvironment::content(),
             QByteArray("XKB_DEFAULT_LAYOUT=at\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
}

void TestKeyboardFile::fileIsRewrittenInPlace()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    const QByteArray path = QFile::encodeName(KeyboardEnvironment::path());
    const QByteArray otherName = path + ".link";
    QCOMPARE(chmod(path.constData(), 0640), 0);
    if (getuid() == 0)
        QCOMPARE(chown(path.constData(), 0, 1), 0);
    QCOMPARE(link(path.constData(), otherName.constData()), 0);
    const struct stat before = statusOf(KeyboardEnvironment::path());

    choose(german);
    const struct stat after = statusOf(KeyboardEnvironment::path());
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_dev, before.st_dev);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(after.st_gid, before.st_gid);
    QCOMPARE(int(after.st_nlink), 2);
    QCOMPARE(FileBytes::read(QFile::decodeName(otherName)),
             QByteArray("A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
    QCOMPARE(
        QDir(KeyboardEnvironment::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList({QStringLiteral("wayland.env"), QStringLiteral("wayland.env.link")}));
}

void TestKeyboardFile::symbolicLinkIsFollowed()
{
    const QString target = KeyboardEnvironment::folder() + QStringLiteral("/elsewhere.env");
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    QVERIFY(QFile::rename(KeyboardEnvironment::path(), target));
    QCOMPARE(symlink("elsewhere.env", QFile::encodeName(KeyboardEnvironment::path()).constData()), 0);
    choose(german);
    QVERIFY(QFileInfo(KeyboardEnvironment::path()).isSymLink());
    QCOMPARE(FileBytes::read(target),
             QByteArray("A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestKeyboardFile::danglingLinkMakesItsTarget()
{
    QCOMPARE(symlink("elsewhere.env", QFile::encodeName(KeyboardEnvironment::path()).constData()), 0);
    choose(german);
    QVERIFY(QFileInfo(KeyboardEnvironment::path()).isSymLink());
    QCOMPARE(KeyboardEnvironment::content(),
             QByteArray("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestKeyboardFile::missingFileIsMade()
{
    choose(german);
    QCOMPARE(KeyboardEnvironment::content(),
             QByteArray("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestKeyboardFile::contentIsOnTheStorageBeforeTheCallReturns()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    SystemCalls::watchSyncs(QFile::encodeName(KeyboardEnvironment::path()));
    choose(german);
    QCOMPARE(SystemCalls::contentsAtSyncs(),
             QVector<QByteArray>{"A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"});
}

void TestKeyboardFile::failedFirstOpenLeavesTheTwoLinesOnly()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    SystemCalls::failOpens(QFile::encodeName(KeyboardEnvironment::path()), {0});
    choose(german);
    QCOMPARE(SystemCalls::openCount(), 2);
    QCOMPARE(KeyboardEnvironment::content(),
             QByteArray("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
    QCOMPARE(m_log->texts(), QStringList{firstLine});
    QCOMPARE(m_log->messages().first().type, QtDebugMsg);
}

void TestKeyboardFile::failedSecondOpenChangesNothing()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    SystemCalls::failOpens(QFile::encodeName(KeyboardEnvironment::path()), {1});
    choose(german);
    QCOMPARE(SystemCalls::openCount(), 2);
    QCOMPARE(m_log->texts(), QStringList{secondLine});
    QCOMPARE(m_log->messages().first().type, QtDebugMsg);
    QCOMPARE(KeyboardEnvironment::content(), QByteArray("A=1\n"));
}

void TestKeyboardFile::bothOpensFailed()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    SystemCalls::failOpens(QFile::encodeName(KeyboardEnvironment::path()), {0, 1});
    SystemCalls::watchSyncs(QFile::encodeName(KeyboardEnvironment::path()));
    choose(german);
    QCOMPARE(m_log->texts(), QStringList({firstLine, secondLine}));
    QCOMPARE(KeyboardEnvironment::content(), QByteArray("A=1\n"));
    QCOMPARE(SystemCalls::contentsAtSyncs().size(), 1);
}

void TestKeyboardFile::directoryInItsPlaceChangesNothing()
{
    QVERIFY(QDir().mkpath(KeyboardEnvironment::path() + QStringLiteral("/inner")));
    choose(german);
    QCOMPARE(m_log->texts(), QStringList({firstLine, secondLine}));
    QCOMPARE(QDir(KeyboardEnvironment::path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("inner")});
}

void TestKeyboardFile::readOnlyFileIsLeftAloneButByRoot()
{
    QVERIFY(KeyboardEnvironment::write("A=1\n"));
    QVERIFY(QFile::setPermissions(KeyboardEnvironment::path(), QFile::ReadOwner));
    choose(german);
    if (getuid() == 0) {
        QCOMPARE(KeyboardEnvironment::content(),
                 QByteArray("A=1\nXKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"));
        QCOMPARE(m_log->texts(), QStringList());
    } else {
        QCOMPARE(KeyboardEnvironment::content(), QByteArray("A=1\n"));
        QCOMPARE(m_log->texts(), QStringList({firstLine, secondLine}));
    }
}

void TestKeyboardFile::choiceDoesNotHoldTheEventLoop()
{
    QVERIFY(KeyboardEnvironment::write(QByteArray("A=1\n").repeated(100000)));
    const QByteArray complaint =
        complaintAbout([this] { return Heartbeat::longestPauseAround([this] { choose(german); }); }, noWait);
    QVERIFY2(complaint.isEmpty(), complaint.constData());
}

void TestKeyboardFile::nothingElseHappens()
{
    const RecordingTools tools;
    QVERIFY(tools.isReady());
    const QByteArray content("[locale]\nkeyboardLayout=us\n");
    QVERIFY(SettingsFile::write(content));
    const EmissionRecorder recorder(m_settings.get());
    const int children = m_settings->children().size();
    choose(german);
    QCoreApplication::processEvents();
    QCOMPARE(SettingsFile::content(), content);
    QCOMPARE(recorder.names(), QStringList());
    QCOMPARE(m_settings->children().size(), children);
    QCOMPARE(tools.commands(), QList<QStringList>());
}

QTEST_GUILESS_MAIN(TestKeyboardFile)
#include "tst_keyboardfile.moc"
