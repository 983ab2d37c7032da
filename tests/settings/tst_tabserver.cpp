// The local socket through which another process selects a tab, with real sockets: what is emitted, which
// client is read, what stays behind, and what happens when the name is taken, stale or impossible.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "otherapplication.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>
#include <QtTest/QtTest>

#include <memory>

namespace {

const QString changed = QStringLiteral("tabEnumChanged");

QString socketPath()
{
    return QDir::tempPath() + QLatin1Char('/') + QCoreApplication::applicationName();
}

bool connectTo(QLocalSocket &client, const QString &path = socketPath())
{
    client.connectToServer(path);
    return client.waitForConnected(10000);
}

bool send(QLocalSocket &client, const QByteArray &message)
{
    return client.write(message) == message.size() && client.flush();
}

QLocalServer *serverOf(const ZBSettingsMain &settings)
{
    return settings.findChild<QLocalServer *>(QString(), Qt::FindDirectChildrenOnly);
}

int socketsOf(const QObject &parent)
{
    return parent.findChildren<QLocalSocket *>(QString(), Qt::FindDirectChildrenOnly).size();
}

void letEverythingHappen()
{
    for (int i = 0; i < 10; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace

class TestTabServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void withoutTheFlagThereIsNoServer();
    void serverHasTheApplicationsName();
    void messageIsEmittedAsItsNumber_data();
    void messageIsEmittedAsItsNumber();
    void everyMessageOfAClientIsEmitted();
    void clientThatClosesAtOnceIsHeard();
    void clientThatSaysNothingIsNotHeard();
    void newestClientIsReadWhicheverHasWritten();
    void leavingOfTheNewestClientLeavesItTheNewest();
    void everyConnectionLeavesItsSocketsBehind();
    void hugeMessageInPiecesDoesNoHarm();
    void manyClientsDoNoHarm();
    void socketGoesWithTheObject();
    void clientsOfADestroyedObjectAreDisconnected();
    void socketOfADeadApplicationIsTakenOver();
    void nameOfALivingApplicationIsTakenOver();
    void secondObjectTakesTheName_data();
    void secondObjectTakesTheName();
    void impossibleNameIsLoggedAndTheObjectWorksOtherwise_data();
    void impossibleNameIsLoggedAndTheObjectWorksOtherwise();
    void reactionsWithoutAConnectionDoNoHarm_data();
    void reactionsWithoutAConnectionDoNoHarm();

private:
    std::unique_ptr<MessageLog> m_log;
};

void TestTabServer::init()
{
    SettingsFile::removeAll();
    QLocalServer::removeServer(QCoreApplication::applicationName());
    QVERIFY(!QFileInfo::exists(socketPath()));
    m_log = std::make_unique<MessageLog>();
}

void TestTabServer::cleanup()
{
    m_log.reset();
    QDir(socketPath()).removeRecursively();
    QFile::remove(socketPath());
    SettingsFile::removeAll();
}

void TestTabServer::withoutTheFlagThereIsNoServer()
{
    const ZBSettingsMain settings(nullptr, false);
    QVERIFY(!serverOf(settings));
    QVERIFY(settings.findChildren<QLocalSocket *>().isEmpty());
    QVERIFY(!QFileInfo::exists(socketPath()));
    QVERIFY(m_log->texts().filter(QStringLiteral("server"), Qt::CaseInsensitive).isEmpty());
    QLocalSocket client;
    QVERIFY(!connectTo(client));
}

void TestTabServer::serverHasTheApplicationsName()
{
    const ZBSettingsMain settings(nullptr, true);
    const QLocalServer *const server = serverOf(settings);
    QVERIFY(server);
    QVERIFY(server->isListening());
    QCOMPARE(server->serverName(), QCoreApplication::applicationName());
    QCOMPARE(server->fullServerName(), socketPath());
    const MessageLog::Message first = m_log->messages().value(0);
    QCOMPARE(first.text, QStringLiteral("QLocalServer Started Successfully on  \"%1\"").arg(socketPath()));
    QCOMPARE(first.type, QtDebugMsg);
    QCOMPARE(first.category, QStringLiteral("default"));
    QCOMPARE(m_log->texts().filter(QStringLiteral("server"), Qt::CaseInsensitive).size(), 1);
    QCOMPARE(socketsOf(settings), 0);
}

void TestTabServer::messageIsEmittedAsItsNumber_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<int>("tab");
    QTest::newRow("number") << QByteArray("2") << 2;
    QTest::newRow("u and number") << QByteArray("u\n4") << 4;
    QTest::newRow("u alone") << QByteArray("u") << 0;
    QTest::newRow("letters") << QByteArray("abc") << 0;
    QTest::newRow("word with u and number") << QByteArray("menu\n7") << 7;
    QTest::newRow("number, then u") << QByteArray("5\nu") << 0;
    QTest::newRow("number, word with u") << QByteArray("5\nmenu") << 5;
    QTest::newRow("NUL alone") << QByteArray("\0", 1) << 0;
    QTest::newRow("NUL ends the text") << QByteArray("6\0"
                                                     "9",
                                                     3)
                                       << 6;
    QTest::newRow("beyond the tabs") << QByteArray("1000") << 1000;
    QTest::newRow("largest int") << QByteArray("2147483647") << 2147483647;
    QTest::newRow("largest number") << QByteArray("4294967295") << -1;
    QTest::newRow("too large") << QByteArray("4294967296") << 0;
    QTest::newRow("invalid UTF-8") << QByteArray("\xff\xfe\xfd") << 0;
}

void TestTabServer::messageIsEmittedAsItsNumber()
{
    QFETCH(QByteArray, message);
    QFETCH(int, tab);
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket client;
    QVERIFY(connectTo(client));
    QVERIFY(send(client, message));
    QVERIFY(recorder.waitFor(1));
    letEverythingHappen();
    QCOMPARE(recorder.names(), QStringList{changed});
    QCOMPARE(recorder.values(changed), QVariantList{tab});
    QCOMPARE(recorder.values(changed).first().userType(), int(QMetaType::Int));

    QVERIFY(!client.waitForReadyRead(0));
    QCOMPARE(client.bytesAvailable(), qint64(0));
    QCOMPARE(client.state(), QLocalSocket::ConnectedState);
    QVERIFY(!SettingsFile::exists());
}

void TestTabServer::everyMessageOfAClientIsEmitted()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket client;
    QVERIFY(connectTo(client));
    const QList<QByteArray> messages{"1", "u\n2", "2", "2", "x"};
    for (int i = 0; i < messages.size(); ++i) {
        QVERIFY(send(client, messages.at(i)));
        QVERIFY(recorder.waitFor(i + 1));
    }
    QCOMPARE(recorder.values(changed), QVariantList({1, 2, 2, 2, 0}));
}

void TestTabServer::clientThatClosesAtOnceIsHeard()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    {
        QLocalSocket client;
        QVERIFY(connectTo(client));
        QVERIFY(send(client, "u\n9"));
        client.disconnectFromServer();
    }
    QVERIFY(recorder.waitFor(1));
    letEverythingHappen();
    QCOMPARE(recorder.values(changed), QVariantList{9});
}

void TestTabServer::clientThatSaysNothingIsNotHeard()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    {
        QLocalSocket silent;
        QVERIFY(connectTo(silent));
    }
    QLocalSocket client;
    QVERIFY(connectTo(client));
    QVERIFY(send(client, "3"));
    QVERIFY(recorder.waitFor(1));
    letEverythingHappen();
    QCOMPARE(recorder.values(changed), QVariantList{3});
}

void TestTabServer::newestClientIsReadWhicheverHasWritten()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket older;
    QVERIFY(connectTo(older));
    QTRY_COMPARE(socketsOf(settings), 1);
    QLocalSocket newer;
    QVERIFY(connectTo(newer));
    QTRY_COMPARE(socketsOf(settings), 2);

    QVERIFY(send(older, "3"));
    QVERIFY(recorder.waitFor(1));
    QVERIFY(send(newer, "5"));
    QVERIFY(recorder.waitFor(2));
    QVERIFY(send(older, "u\n4"));
    QVERIFY(recorder.waitFor(3));
    QVERIFY(send(newer, "u\n6"));
    QVERIFY(recorder.waitFor(4));
    letEverythingHappen();
    QCOMPARE(recorder.values(changed), QVariantList({0, 5, 0, 6}));
}

void TestTabServer::leavingOfTheNewestClientLeavesItTheNewest()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket older;
    QVERIFY(connectTo(older));
    QTRY_COMPARE(socketsOf(settings), 1);
    {
        QLocalSocket newer;
        QVERIFY(connectTo(newer));
        QTRY_COMPARE(socketsOf(settings), 2);
    }
    letEverythingHappen();
    QVERIFY(send(older, "3"));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{0});
}

void TestTabServer::everyConnectionLeavesItsSocketsBehind()
{
    const ZBSettingsMain settings(nullptr, true);
    const QLocalServer *const server = serverOf(settings);
    EmissionRecorder recorder(&settings);
    for (int connections = 1; connections <= 3; ++connections) {
        QLocalSocket client;
        QVERIFY(connectTo(client));
        QVERIFY(send(client, "1"));
        QVERIFY(recorder.waitFor(connections));
        QCOMPARE(socketsOf(settings), connections);
        QCOMPARE(socketsOf(*server), connections);
    }
    letEverythingHappen();
    QCOMPARE(socketsOf(settings), 3);
    QCOMPARE(socketsOf(*server), 3);
    for (const QLocalSocket *const unused :
         settings.findChildren<QLocalSocket *>(QString(), Qt::FindDirectChildrenOnly))
        QCOMPARE(unused->state(), QLocalSocket::UnconnectedState);
    QVERIFY(server->isListening());
}

void TestTabServer::hugeMessageInPiecesDoesNoHarm()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    {
        QLocalSocket client;
        QVERIFY(connectTo(client));
        const QByteArray piece(10 * 1024, 'x');
        for (int i = 0; i < 105; ++i) {
            QCOMPARE(client.write(piece), qint64(piece.size()));
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE(client.bytesToWrite(), qint64(0));
        QVERIFY(recorder.waitFor(1));
    }
    letEverythingHappen();
    for (const QVariant &value : recorder.values(changed))
        QCOMPARE(value, QVariant(0));

    QLocalSocket client;
    QVERIFY(connectTo(client));
    QVERIFY(send(client, "7"));
    QTRY_COMPARE(recorder.values(changed).last(), QVariant(7));
    QCOMPARE(recorder.names().count(changed), recorder.names().size());
}

void TestTabServer::manyClientsDoNoHarm()
{
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    for (int i = 1; i <= 100; ++i) {
        QLocalSocket client;
        QVERIFY(connectTo(client));
        QVERIFY(send(client, QByteArray::number(i)));
        QVERIFY(recorder.waitFor(i));
        QCOMPARE(recorder.values(changed).last(), QVariant(i));
    }
}

void TestTabServer::socketGoesWithTheObject()
{
    auto settings = std::make_unique<ZBSettingsMain>(nullptr, true);
    QVERIFY(QFileInfo::exists(socketPath()));
    settings.reset();
    QVERIFY(!QFileInfo::exists(socketPath()));
    QLocalSocket client;
    QVERIFY(!connectTo(client));
}

void TestTabServer::clientsOfADestroyedObjectAreDisconnected()
{
    auto settings = std::make_unique<ZBSettingsMain>(nullptr, true);
    QLocalSocket older;
    QLocalSocket newer;
    QVERIFY(connectTo(older) && connectTo(newer));
    QTRY_COMPARE(socketsOf(*settings), 2);
    QVERIFY(send(older, "1"));
    QVERIFY(send(newer, "2"));
    settings.reset();
    QTRY_COMPARE(older.state(), QLocalSocket::UnconnectedState);
    QTRY_COMPARE(newer.state(), QLocalSocket::UnconnectedState);
}

void TestTabServer::socketOfADeadApplicationIsTakenOver()
{
    {
        OtherApplication other(QCoreApplication::applicationName());
        QCOMPARE(other.construct(true).exception, QString());
        QVERIFY(QFileInfo::exists(socketPath()));
        other.kill();
    }
    QVERIFY(QFileInfo::exists(socketPath()));
    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket client;
    QVERIFY(connectTo(client));
    QVERIFY(send(client, "2"));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{2});
}

void TestTabServer::nameOfALivingApplicationIsTakenOver()
{
    OtherApplication other(QCoreApplication::applicationName());
    QCOMPARE(other.construct(true).exception, QString());
    QLocalSocket earlier;
    QVERIFY(connectTo(earlier));

    const ZBSettingsMain settings(nullptr, true);
    EmissionRecorder recorder(&settings);
    QLocalSocket client;
    QVERIFY(connectTo(client));
    QVERIFY(send(client, "2"));
    QVERIFY(recorder.waitFor(1));
    QCOMPARE(recorder.values(changed), QVariantList{2});
    QCOMPARE(other.emittedValues(changed), QVariantList());

    // Whoever was connected before still reaches the first application.
    QVERIFY(send(earlier, "8"));
    QTRY_COMPARE(other.emittedValues(changed), QVariantList{8});
    QCOMPARE(recorder.values(changed), QVariantList{2});
    QCOMPARE(other.destroy().exception, QString());
    QVERIFY(other.isRunning());
}

void TestTabServer::secondObjectTakesTheName_data()
{
    QTest::addColumn<bool>("firstGoesFirst");
    QTest::newRow("first goes first") << true;
    QTest::newRow("second goes first") << false;
}

void TestTabServer::secondObjectTakesTheName()
{
    QFETCH(bool, firstGoesFirst);
    auto first = std::make_unique<ZBSettingsMain>(nullptr, true);
    auto second = std::make_unique<ZBSettingsMain>(nullptr, true);
    {
        EmissionRecorder ofFirst(first.get());
        EmissionRecorder ofSecond(second.get());
        QLocalSocket client;
        QVERIFY(connectTo(client));
        QVERIFY(send(client, "2"));
        QVERIFY(ofSecond.waitFor(1));
        QCOMPARE(ofSecond.values(changed), QVariantList{2});
        QCOMPARE(ofFirst.names(), QStringList());
    }
    (firstGoesFirst ? first : second).reset();
    letEverythingHappen();
    ZBSettingsMain *const left = firstGoesFirst ? second.get() : first.get();
    QVERIFY(serverOf(*left)->isListening());
    left->setSetting(QStringLiteral("units"), 1);
    QVERIFY(SettingsFile::exists());
}

void TestTabServer::impossibleNameIsLoggedAndTheObjectWorksOtherwise_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("folder") << QStringLiteral("folder");
    QTest::newRow("full folder") << QStringLiteral("folder/inner");
}

void TestTabServer::impossibleNameIsLoggedAndTheObjectWorksOtherwise()
{
    QFETCH(QString, obstacle);
    QVERIFY(QDir().mkpath(obstacle.replace(QStringLiteral("folder"), socketPath())));
    QVERIFY(SettingsFile::write("[display]\nbrightnessLevel=3\n"));
    ZBSettingsMain settings(nullptr, true);
    const MessageLog::Message first = m_log->messages().value(0);
    QCOMPARE(first.text, QStringLiteral("Cannot start server:  \"\""));
    QCOMPARE(first.type, QtDebugMsg);
    QCOMPARE(first.category, QStringLiteral("default"));
    QVERIFY(m_log->texts().filter(QStringLiteral("Started Successfully")).isEmpty());
    QVERIFY(QFileInfo(socketPath()).isDir());

    QCOMPARE(settings.settingDisplayBrightness(), 3u);
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY(SettingsFile::content().contains("units=1\n"));
    QCOMPARE(settings.getSetting(QStringLiteral("units")).toInt(), 1);
}

void TestTabServer::reactionsWithoutAConnectionDoNoHarm_data()
{
    QTest::addColumn<bool>("server");
    QTest::newRow("server without a client") << true;
    QTest::newRow("no server") << false;
}

// The meta-object lets anybody invoke them.
void TestTabServer::reactionsWithoutAConnectionDoNoHarm()
{
    QFETCH(bool, server);
    ZBSettingsMain settings(nullptr, server);
    QSignalSpy tab(&settings, &ZBSettingsMain::tabEnumChanged);
    QVERIFY(QMetaObject::invokeMethod(&settings, "localSocketDataReceived"));
    QVERIFY(QMetaObject::invokeMethod(&settings, "newClientConnection"));
    QVERIFY(QMetaObject::invokeMethod(&settings, "localSocketDataReceived"));
    QCOMPARE(tab.count(), 2);
    QCOMPARE(tab.at(0), QVariantList{0});
    QCOMPARE(tab.at(1), QVariantList{0});
}

QTEST_GUILESS_MAIN(TestTabServer)
#include "tst_tabserver.moc"
