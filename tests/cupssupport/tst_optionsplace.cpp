// Where the lpoptions files are looked for. Nothing is read or written there.
#include "optionsfiles.h"

#include <QtTest/QtTest>

#include <cstdlib>
#include <pwd.h>

namespace {

char passwdHome[] = "/home/of/the/user";
bool hasPasswdHome = true;

} // namespace

/// Stands before the C library's, so that no real user's home comes into this.
extern "C" __attribute__((visibility("default"))) int getpwuid_r(uid_t, passwd *user, char *, size_t,
                                                                 passwd **found)
{
    user->pw_dir = passwdHome;
    *found = hasPasswdHome ? user : nullptr;
    return 0;
}

class TestOptionsPlace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void usersFileIsInHisHome_data();
    void usersFileIsInHisHome();
    void withoutHomeItIsInTheOneThatTheSystemKnows();
    void userWithoutAnyHomeHasNoFile();
    void systemsFileIsWhereCupsHasItsSettings();

private:
    const QByteArray m_home = qgetenv("HOME");
    const QByteArray m_serverRoot = qgetenv("CUPS_SERVERROOT");
};

void TestOptionsPlace::cleanup()
{
    hasPasswdHome = true;
    qputenv("HOME", m_home);
    qunsetenv("CUPS_SERVERROOT");
    if (!m_serverRoot.isNull())
        qputenv("CUPS_SERVERROOT", m_serverRoot);
}

void TestOptionsPlace::usersFileIsInHisHome_data()
{
    QTest::addColumn<QByteArray>("home");
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("usual") << QByteArray("/home/me") << QByteArray("/home/me/.cups/lpoptions");
    // As libcups has it.
    QTest::newRow("empty") << QByteArray("") << QByteArray("/.cups/lpoptions");
}

void TestOptionsPlace::usersFileIsInHisHome()
{
    QFETCH(QByteArray, home);
    QFETCH(QByteArray, file);
    QCOMPARE(setenv("HOME", home.constData(), 1), 0);
    QCOMPARE(userOptionsFile(), file);
}

void TestOptionsPlace::withoutHomeItIsInTheOneThatTheSystemKnows()
{
    qunsetenv("HOME");
    QCOMPARE(userOptionsFile(), QByteArray("/home/of/the/user/.cups/lpoptions"));
}

void TestOptionsPlace::userWithoutAnyHomeHasNoFile()
{
    qunsetenv("HOME");
    hasPasswdHome = false;
    QCOMPARE(userOptionsFile(), QByteArray());
}

void TestOptionsPlace::systemsFileIsWhereCupsHasItsSettings()
{
    qunsetenv("CUPS_SERVERROOT");
    QCOMPARE(systemOptionsFile(), QByteArray("/etc/cups/lpoptions"));
    qputenv("CUPS_SERVERROOT", "/srv/cups");
    QCOMPARE(systemOptionsFile(), QByteArray("/srv/cups/lpoptions"));
}

QTEST_APPLESS_MAIN(TestOptionsPlace)
#include "tst_optionsplace.moc"
