// A thousand tab messages, against a plain split and a plain local server.
#include "benchmarks.h"
#include "pairedmeasurement.h"
#include "tabclient.h"

#include "tabmessage.h"
#include "zbsettingsmain.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QVector>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

#include <functional>
#include <memory>

namespace {

using TabNumbers = QVariantList;

/// Every tab in turn, in both forms that programs of the device send.
QVector<QByteArray> thousandMessages()
{
    QVector<QByteArray> messages;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray number = QByteArray::number(i / 2 % 12);
        messages.append(i % 2 ? "u\n" + number : number);
    }
    return messages;
}

uint plainTabIndex(const QByteArray &message)
{
    const QStringList lines = QString::fromUtf8(message.constData()).split(QLatin1Char('\n'));
    for (int i = 0; i + 1 < lines.size(); ++i) {
        if (lines.at(i).contains(QLatin1Char('u')))
            return lines.at(i + 1).toUInt();
    }
    return lines.contains(QStringLiteral("u")) ? 0 : lines.constFirst().toUInt();
}

void readMessages(benchmark::State &state)
{
    const QVector<QByteArray> messages = thousandMessages();
    const auto wayWith = [&messages](uint (*tabIndex)(const QByteArray &), QVector<uint> &numbers) {
        return Way{[&] { numbers.clear(); },
                   [&messages, &numbers, tabIndex] {
                       for (const QByteArray &message : messages)
                           numbers.append(tabIndex(message));
                   },
                   [&numbers] {
                       TabNumbers result;
                       for (const uint number : qAsConst(numbers))
                           result.append(number);
                       return result;
                   }};
    };
    QVector<uint> ourNumbers;
    QVector<uint> plainNumbers;
    measurePair(state, wayWith(tabIndexFromMessage, ourNumbers), wayWith(plainTabIndex, plainNumbers),
                noTarget);
}

/// The plain way to listen for tab numbers.
class PlainTabServer
{
public:
    PlainTabServer(const QString &name, const std::function<void(int)> &tabSelected)
    {
        QLocalServer::removeServer(name);
        if (!m_server.listen(name))
            qFatal("Cannot listen on %s", qPrintable(name));
        QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this, tabSelected] {
            QLocalSocket *const client = m_server.nextPendingConnection();
            QObject::connect(client, &QLocalSocket::readyRead, client,
                             [client, tabSelected] { tabSelected(int(plainTabIndex(client->readAll()))); });
        });
    }

private:
    QLocalServer m_server;
};

/// Both sides listen; \a sendAll sends all messages to a socket and calls the function that it is given after
/// each message, to wait until it was understood.
void measureListening(benchmark::State &state,
                      void (*sendAll)(const QString &socketPath, const std::function<void()> &waitForNumber))
{
    TabNumbers numbers;
    const auto keep = [&numbers](int number) { numbers.append(number); };
    const auto sendTo = [&numbers, sendAll](const QString &socketName) {
        numbers.clear();
        sendAll(QDir::temp().filePath(socketName), [&numbers] {
            const int known = numbers.size();
            while (numbers.size() == known)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        });
    };

    // Both servers are new each time, since a server remembers its connections, and whichever is measured.
    // The old ones go first: a server that ends takes the socket of that name with it, whoever listens there.
    const QString ourName = QCoreApplication::applicationName();
    const QString plainName = ourName + QStringLiteral("-plain");
    std::unique_ptr<ZBSettingsMain> settings;
    std::unique_ptr<PlainTabServer> server;
    const auto renewServers = [&] {
        settings.reset();
        server.reset();
        settings = std::make_unique<ZBSettingsMain>(nullptr, true);
        server = std::make_unique<PlainTabServer>(plainName, keep);
        QObject::connect(settings.get(), &ZBSettingsMain::tabEnumChanged, keep);
    };

    const Way ours{renewServers, [&] { sendTo(ourName); }, [&] { return numbers; }};
    const Way plain{renewServers, [&] { sendTo(plainName); }, [&] { return numbers; }};
    measurePair(state, ours, plain, noTarget);
}

void sendOnOneConnection(const QString &socketPath, const std::function<void()> &waitForNumber)
{
    const TabClient client(socketPath);
    for (const QByteArray &message : thousandMessages()) {
        client.send(message);
        waitForNumber();
    }
}

void sendOnAConnectionEach(const QString &socketPath, const std::function<void()> &waitForNumber)
{
    for (const QByteArray &message : thousandMessages()) {
        const TabClient client(socketPath);
        client.send(message);
        waitForNumber();
    }
}

void listenOnOneConnection(benchmark::State &state)
{
    measureListening(state, sendOnOneConnection);
}

void listenOnAConnectionEach(benchmark::State &state)
{
    measureListening(state, sendOnAConnectionEach);
}

} // namespace

void registerTabMessageBenchmarks()
{
    registerPair("1000 tab messages, understanding alone", readMessages);
    registerPair("1000 tab messages, one connection", listenOnOneConnection);
    registerPair("1000 tab messages, a connection each", listenOnAConnectionEach);
}
