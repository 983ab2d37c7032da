// The page Date & Time with the real clock service, on a whole device.
#include "appsession.h"
#include "settingsfile.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtTest/QtTest>

class TestClockOnDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void clockIsAcceptedAtOnceAfterNetworkTimeHasStopped();
    void networkTimeComesBack();
};

namespace {

const QString chooser = QStringLiteral("setClock");

QByteArrayList clockLog()
{
    QFile file(qEnvironmentVariable("ZBVIRTUALDEVICE_CLOCK_LOG"));
    QByteArrayList lines = file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QByteArrayList();
    lines.removeAll(QByteArray());
    return lines;
}

/// How long the service manager takes to stop or start the network time.
bool setJobTime(uint milliseconds)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.systemd1"), QStringLiteral("/com/corvanta/VirtualServiceManager"),
        QStringLiteral("com.corvanta.VirtualServiceManager1"), QStringLiteral("SetJobTime"));
    message.setArguments({milliseconds});
    return QDBusConnection::systemBus().call(message).type() == QDBusMessage::ReplyMessage;
}

} // namespace

void TestClockOnDevice::initTestCase()
{
    // Elsewhere the clock is the machine's own.
    QVERIFY(qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_CLOCK_LOG"));
}

void TestClockOnDevice::init()
{
    SettingsFile::removeAll();
}

void TestClockOnDevice::clockIsAcceptedAtOnceAfterNetworkTimeHasStopped()
{
    constexpr uint stoppingTime = 800;
    QVERIFY(setJobTime(stoppingTime));
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("On"));
    const int before = clockLog().size();

    QElapsedTimer elapsed;
    elapsed.start();
    app.click(QStringLiteral("automaticDateTime"));
    QVERIFY(!app.item(chooser).isEnabled());
    QTRY_VERIFY(app.item(chooser).isEnabled());
    QVERIFY2(elapsed.elapsed() >= stoppingTime, qPrintable(QString::number(elapsed.elapsed())));

    app.click(chooser);
    app.press(QStringLiteral("clock.year"), Qt::Key_Home);
    app.press(QStringLiteral("clock.month"), Qt::Key_Home);
    app.press(QStringLiteral("clock.day"), Qt::Key_End);
    app.press(QStringLiteral("clock.hour"), Qt::Key_Home);
    app.press(QStringLiteral("clock.half"), Qt::Key_End);
    app.press(QStringLiteral("clock.minute"), Qt::Key_End);
    app.click(QStringLiteral("clock.set"));
    // First 31 January 2020, then 12:59 PM: of today, since the tool does not see the device's clock here.
    QTRY_COMPARE(clockLog().size(), before + 2);
    const qint64 date = clockLog().at(before).split('.').first().toLongLong();
    QVERIFY2(date >= 1580428800 && date < 1580428805, clockLog().at(before).constData());
    constexpr qint64 secondsOfADay = 86400;
    const qint64 time = clockLog().at(before + 1).split('.').first().toLongLong() % secondsOfADay;
    QVERIFY2(time >= 46740 && time < 46745, clockLog().at(before + 1).constData());
}

void TestClockOnDevice::networkTimeComesBack()
{
    QVERIFY(setJobTime(50));
    QVERIFY(SettingsFile::write("[dateTime]\nautomaticDateTime=false\n"));
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("Off"));
    app.click(QStringLiteral("automaticDateTime"));
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("On"));
    QVERIFY(!app.item(chooser).isEnabled());
}

QTEST_MAIN(TestClockOnDevice)
#include "tst_clockondevice.moc"
