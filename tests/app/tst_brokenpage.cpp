// A page with mistakes costs that page, never the application.
#include "appsession.h"
#include "messagelog.h"
#include "settingsfile.h"

#include <QtNetwork/QLocalSocket>
#include <QtTest/QtTest>

class TestBrokenPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void misspeltKeyIsAnErrorOfThePageOnly();
    void pageThatCannotBeLoadedSaysSo();
};

namespace {

/// Takes the page of a tab away and puts the file in its place.
QQuickItem *replacePage(AppSession &app, int tab, const QString &fileName)
{
    app.turnTo(tab);
    QQuickItem &loader = app.item(QStringLiteral("page.%1").arg(tab));
    loader.setProperty("source", QUrl::fromLocalFile(fileName));
    return loader.property("item").value<QQuickItem *>();
}

} // namespace

void TestBrokenPage::init()
{
    SettingsFile::removeAll();
}

void TestBrokenPage::misspeltKeyIsAnErrorOfThePageOnly()
{
    AppSession app;
    const QString file = QStringLiteral(ZB_SOURCE_DIRECTORY "/BrokenPage.qml");
    const QString error = QUrl::fromLocalFile(file).toString() + QStringLiteral(":%1: Error: map::at");

    QQuickItem *page = nullptr;
    {
        const MessageLog log;
        page = replacePage(app, 5, file);
        QVERIFY(log.texts().contains(error.arg(6)));
        QVERIFY(log.texts().contains(error.arg(13)));
    }
    QVERIFY(page);
    QVERIFY(page->property("untouched").toBool());
    QVERIFY(!page->property("brightness").isValid());
    {
        const MessageLog log;
        QMetaObject::invokeMethod(page, "store");
        QCOMPARE(log.texts(), QStringList(error.arg(10)));
    }
    QVERIFY(!SettingsFile::exists());

    {
        const MessageLog log;
        QLocalSocket socket;
        socket.connectToServer(QCoreApplication::applicationName(), QIODevice::WriteOnly);
        QVERIFY(socket.waitForConnected());
        socket.write("1");
        socket.flush();
        QTRY_COMPARE(app.currentTab(), 1);
        QVERIFY(log.texts().contains(error.arg(19)));
    }
    app.click(QStringLiteral("24Hour"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
}

void TestBrokenPage::pageThatCannotBeLoadedSaysSo()
{
    AppSession app;
    QVERIFY(!replacePage(app, 5, QStringLiteral(ZB_SOURCE_DIRECTORY "/NoSuchPage.qml")));
    QCOMPARE(app.text(QStringLiteral("pageError")), QStringLiteral("This page cannot be shown."));
    app.turnTo(1);
    app.click(QStringLiteral("24Hour"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
}

QTEST_MAIN(TestBrokenPage)
#include "tst_brokenpage.moc"
