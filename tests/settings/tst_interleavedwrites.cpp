// Another process writes at the worst moment: between any two looks that a read or a write of ours takes at
// the settings file. No write is undone, and a read gives the old value or the new one.
//
// The moments are found without chance. This program's own statx() stands before the system's, counts the
// looks at the settings file and lets the other process write before the chosen one. Values keep their
// length, since a file of another length is known to be another file anyway.
#include "messagelog.h"
#include "otherapplication.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <dlfcn.h>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What is done before the look that is counted down to; nothing while it is empty.
std::function<void()> interruption;
QByteArray watchedPath;
int looksUntilInterruption = -1;
int looks = 0;

void lookAt(const char *path)
{
    if (watchedPath.isEmpty() || !path || watchedPath != path)
        return;
    ++looks;
    if (looksUntilInterruption-- == 0 && interruption)
        std::exchange(interruption, {})();
}

/// Whether our own write has locked the folder, so that another writer would wait for us.
bool isFolderLocked()
{
    const int folder =
        open(QFile::encodeName(SettingsFile::folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isLocked = folder < 0 || flock(folder, LOCK_EX | LOCK_NB) != 0;
    if (folder >= 0)
        close(folder);
    return isLocked;
}

} // namespace

// The Qt library calls these; the program's definitions come first in the search order.
extern "C" Q_DECL_EXPORT int statx(int folder, const char *path, int flags, unsigned int mask,
                                   struct statx *result)
{
    using Function = int (*)(int, const char *, int, unsigned int, struct statx *);
    static const auto systems = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "statx"));
    lookAt(path);
    return systems(folder, path, flags, mask, result);
}

class TestInterleavedWrites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void looksAreCounted();
    void readIsOldOrNewAndNoWriteUndoesTheOthersValue_data();
    void readIsOldOrNewAndNoWriteUndoesTheOthersValue();
    void writeKeepsTheOthersValue_data();
    void writeKeepsTheOthersValue();
    void noWriteAfterConstructionUndoesTheOthersValue_data();
    void noWriteAfterConstructionUndoesTheOthersValue();

private:
    static void addMoments();
    void interruptBeforeLook(int number);
    static void stopWatching();

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<OtherApplication> m_other;
    bool m_otherHasWritten = false;
};

void TestInterleavedWrites::init()
{
    m_log = std::make_unique<MessageLog>();
    SettingsFile::removeAll();
    QVERIFY(SettingsFile::write("[locale]\nlanguage=first_\nunits=0\n"));
    m_other = std::make_unique<OtherApplication>();
    QCOMPARE(m_other->construct().exception, QString());
    m_otherHasWritten = false;
}

void TestInterleavedWrites::cleanup()
{
    stopWatching();
    m_other.reset();
    SettingsFile::removeAll();
    m_log.reset();
}

void TestInterleavedWrites::addMoments()
{
    QTest::addColumn<int>("look");
    for (int look = 0; look < 12; ++look)
        QTest::newRow(qPrintable(QStringLiteral("before look %1").arg(look + 1))) << look;
}

void TestInterleavedWrites::interruptBeforeLook(int number)
{
    interruption = [this] {
        stopWatching();
        if (isFolderLocked())
            return;
        m_otherHasWritten =
            m_other->set(QStringLiteral("language"), QStringLiteral("second")).exception.isEmpty();
    };
    looks = 0;
    looksUntilInterruption = number;
    watchedPath = QFile::encodeName(SettingsFile::path());
}

void TestInterleavedWrites::stopWatching()
{
    watchedPath.clear();
}

// Without this the other tests could pass because nothing was ever interrupted.
void TestInterleavedWrites::looksAreCounted()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(SettingsFile::write("[locale]\nlanguage=third_\nunits=0\n"));
    interruptBeforeLook(1);
    QVERIFY(settings.getSetting(QStringLiteral("language")).isValid());
    QVERIFY2(m_otherHasWritten, qPrintable(QString::number(looks)));
}

void TestInterleavedWrites::readIsOldOrNewAndNoWriteUndoesTheOthersValue_data()
{
    addMoments();
}

void TestInterleavedWrites::readIsOldOrNewAndNoWriteUndoesTheOthersValue()
{
    QFETCH(int, look);
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(SettingsFile::write("[locale]\nlanguage=third_\nunits=0\n"));
    interruptBeforeLook(look);
    const QString read = settings.getSetting(QStringLiteral("language")).toString();
    stopWatching();
    QVERIFY2(read == QLatin1String("third_") || (m_otherHasWritten && read == QLatin1String("second")),
             qPrintable(read));
    const QByteArray language = m_otherHasWritten ? "second" : "third_";
    settings.setSetting(QStringLiteral("units"), 1);
    QCOMPARE(SettingsFile::content(), "[locale]\nlanguage=" + language + "\nunits=1\n");
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QString::fromLatin1(language)));
}

void TestInterleavedWrites::writeKeepsTheOthersValue_data()
{
    addMoments();
}

void TestInterleavedWrites::writeKeepsTheOthersValue()
{
    QFETCH(int, look);
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(SettingsFile::write("[locale]\nlanguage=third_\nunits=0\n"));
    interruptBeforeLook(look);
    settings.setSetting(QStringLiteral("units"), 1);
    stopWatching();
    const QByteArray language = m_otherHasWritten ? "second" : "third_";
    QCOMPARE(SettingsFile::content(), "[locale]\nlanguage=" + language + "\nunits=1\n");
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QString::fromLatin1(language)));
    settings.setSetting(QStringLiteral("keyboardLayout"), QStringLiteral("de"));
    QCOMPARE(SettingsFile::content(), "[locale]\nkeyboardLayout=de\nlanguage=" + language + "\nunits=1\n");
}

void TestInterleavedWrites::noWriteAfterConstructionUndoesTheOthersValue_data()
{
    addMoments();
}

void TestInterleavedWrites::noWriteAfterConstructionUndoesTheOthersValue()
{
    QFETCH(int, look);
    interruptBeforeLook(look);
    ZBSettingsMain settings(nullptr, false);
    stopWatching();
    const QByteArray language = m_otherHasWritten ? "second" : "first_";
    settings.setSetting(QStringLiteral("units"), 1);
    QCOMPARE(SettingsFile::content(), "[locale]\nlanguage=" + language + "\nunits=1\n");
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QString::fromLatin1(language)));
}

QTEST_GUILESS_MAIN(TestInterleavedWrites)
#include "tst_interleavedwrites.moc"
