// The internet state on the pages: what the utility daemon says, as soon as it says it, and the truth without
// a daemon.
#include "appsession.h"
#include "settingsfile.h"
#include "utilitydaemon.h"

#include <QtTest/QtTest>

#include <memory>

class TestInternet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stateAtStartShows_data();
    void stateAtStartShows();
    void stateFollowsTheDaemon();
    void everyPageShowsTheState();
    void checkAgainAsksTheDaemonAndShowsItsAnswer();
    void checkAgainWithoutAnAnswerSaysSo();
    void withoutADaemonThePageSaysNotConnected();
    void settingsAreStoredWithoutADaemon();
    void settingsAreStoredWhenTheDaemonRefuses();
    void settingsAreStoredWhenTheDaemonDiesInTheCall();

private:
    void startDaemon(bool connected);

    std::unique_ptr<UtilityDaemon> m_daemon;
};

namespace {

const QString connectedText = QStringLiteral("Connected to the internet");
const QString disconnectedText = QStringLiteral("Not connected to the internet");

QString stateText(const AppSession &app)
{
    return app.text(QStringLiteral("internetState"));
}

} // namespace

void TestInternet::init()
{
    SettingsFile::removeAll();
    m_daemon = std::make_unique<UtilityDaemon>();
}

void TestInternet::cleanup()
{
    if (m_daemon->isRunning())
        QVERIFY2(m_daemon->terminate(), qPrintable(m_daemon->errorText()));
    m_daemon.reset();
}

void TestInternet::startDaemon(bool connected)
{
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->errorText()));
    QVERIFY(m_daemon->setInternetState(connected));
}

void TestInternet::stateAtStartShows_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("text");
    QTest::newRow("connected") << true << connectedText;
    QTest::newRow("not connected") << false << disconnectedText;
}

void TestInternet::stateAtStartShows()
{
    QFETCH(bool, connected);
    QFETCH(QString, text);
    startDaemon(connected);
    const AppSession app(2);
    QCOMPARE(stateText(app), text);
}

void TestInternet::stateFollowsTheDaemon()
{
    startDaemon(true);
    const AppSession app(2);
    QVERIFY(m_daemon->setInternetState(false));
    QTRY_COMPARE(stateText(app), disconnectedText);
    QVERIFY(m_daemon->setInternetState(true));
    QTRY_COMPARE(stateText(app), connectedText);
}

void TestInternet::everyPageShowsTheState()
{
    startDaemon(true);
    AppSession app;
    for (const int tab : {0, 1, 2, 3, 5}) {
        app.turnTo(tab);
        QVERIFY(m_daemon->setInternetState(false));
        QTRY_COMPARE(app.text(QStringLiteral("connectionState")), QStringLiteral("No internet"));
        QCOMPARE(app.isVisible(QStringLiteral("updatesNeedInternet")), tab == 3);
        QVERIFY(m_daemon->setInternetState(true));
        QTRY_COMPARE(app.text(QStringLiteral("connectionState")), QStringLiteral("Internet connected"));
        QVERIFY(!app.isVisible(QStringLiteral("updatesNeedInternet")));
    }
}

void TestInternet::checkAgainAsksTheDaemonAndShowsItsAnswer()
{
    startDaemon(true);
    AppSession app(2);
    QVERIFY(m_daemon->clearCalls());
    app.click(QStringLiteral("checkAgain"));
    QCOMPARE(m_daemon->calls().size(), 1);
    QCOMPARE(m_daemon->calls().first().method, QStringLiteral("checkInternetConnection"));
    QTRY_VERIFY(app.text(QStringLiteral("checkReport")).startsWith(QStringLiteral("Reported at ")));
    QVERIFY(app.property(QStringLiteral("checkAgain"), "enabled").toBool());
    QCOMPARE(stateText(app), connectedText);
}

void TestInternet::checkAgainWithoutAnAnswerSaysSo()
{
    AppSession app(2);
    app.click(QStringLiteral("checkAgain"));
    QCOMPARE(app.text(QStringLiteral("checkReport")), QStringLiteral("Checking…"));
    QVERIFY(!app.property(QStringLiteral("checkAgain"), "enabled").toBool());
    QTRY_COMPARE_WITH_TIMEOUT(app.text(QStringLiteral("checkReport")),
                              QStringLiteral("The device did not answer the check"), 10000);
    QVERIFY(app.property(QStringLiteral("checkAgain"), "enabled").toBool());
}

void TestInternet::withoutADaemonThePageSaysNotConnected()
{
    AppSession app(2);
    QCOMPARE(stateText(app), disconnectedText);
    QCOMPARE(app.text(QStringLiteral("connectionState")), QStringLiteral("No internet"));
}

void TestInternet::settingsAreStoredWithoutADaemon()
{
    AppSession app(1);
    app.click(QStringLiteral("24Hour"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
    QCOMPARE(app.property(QStringLiteral("24Hour"), "checked").toBool(), true);
}

void TestInternet::settingsAreStoredWhenTheDaemonRefuses()
{
    startDaemon(true);
    AppSession app(1);
    QVERIFY(m_daemon->failNextCall(QStringLiteral("com.example.Error"), QStringLiteral("on purpose")));
    app.click(QStringLiteral("24Hour"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
    QCOMPARE(app.property(QStringLiteral("24Hour"), "checked").toBool(), true);
}

void TestInternet::settingsAreStoredWhenTheDaemonDiesInTheCall()
{
    startDaemon(true);
    AppSession app(1);
    QVERIFY(m_daemon->dieInNextCall());
    app.click(QStringLiteral("24Hour"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
    app.turnTo(2);
    QCOMPARE(stateText(app), connectedText);
    QVERIFY(m_daemon->waitForEnd());
}

QTEST_MAIN(TestInternet)
#include "tst_internet.moc"
