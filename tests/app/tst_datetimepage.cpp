// The clock on the page Date & Time: what is asked of the system when it is set, and when it may be.
#include "appsession.h"
#include "devicetools.h"
#include "fakeclockservice.h"
#include "settingsfile.h"

#include <QtTest/QtTest>

#include <memory>

class TestDateTimePage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void switchStoresAndAsksForNetworkTime_data();
    void switchStoresAndAsksForNetworkTime();
    void clockCannotBeSetWhileItIsKeptAutomatically();
    void clockCanBeSetOnceNetworkTimeIsReallyOff();
    void waitingForNetworkTimeEndsAndCanBeRepeated();
    void withoutAClockServiceTheStateIsNotKnown();
    void pickerOffersOnlyDaysThatExist_data();
    void pickerOffersOnlyDaysThatExist();
    void dateIsSetBeforeTheTime_data();
    void dateIsSetBeforeTheTime();
    void timeAloneIsSetWhereTheDateStays();
    void cancelledPickerSetsNothing();
    void wheelsTurnByKeys();
    void wheelsTurnByAFinger();
    void everyTargetOfThePickerIsBigEnoughForAFinger();
    void partsOfTheDateStandInTheOrderOfTheFormat();
    void clockThatIsNotChangedIsReported();
    void hangingToolHoldsThePageForHalfASecondOnly();

private:
    /// At the page, with network time off and the clock ready to be set.
    std::unique_ptr<AppSession> session(const QByteArray &settings = {});
    /// Of timedatectl, whose arguments they are.
    QStringList runs() const;
    static void setPatience(AppSession &app, int milliseconds);

    std::unique_ptr<DeviceTools> m_tools;
    std::unique_ptr<FakeClockService> m_service;
};

namespace {

const QString chooser = QStringLiteral("setClock");

/// By touches on entries near the middle.
void turn(AppSession &app, const QString &wheel, const QString &text)
{
    const QString name = QStringLiteral("clock.") + wheel;
    const int target = app.property(name, "entries").toStringList().indexOf(text);
    QVERIFY2(target >= 0, qPrintable(text));
    for (int touches = 0; touches < 100; ++touches) {
        const QQuickItem &item = app.item(name);
        const int way = target - item.property("position").toInt();
        if (way == 0)
            return;
        const QPointF place(item.width() / 2, item.height() / 2 + 52 * qBound(-2, way, 2));
        QTest::mouseClick(app.window(), Qt::LeftButton, Qt::NoModifier, item.mapToScene(place).toPoint());
    }
    QFAIL(qPrintable(name + QStringLiteral(" does not turn to ") + text));
}

QString picked(AppSession &app, const QString &wheel)
{
    return app.property(QStringLiteral("clock.") + wheel, "text").toString();
}

} // namespace

void TestDateTimePage::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<DeviceTools>();
}

void TestDateTimePage::cleanup()
{
    m_service.reset();
    m_tools.reset();
}

std::unique_ptr<AppSession> TestDateTimePage::session(const QByteArray &settings)
{
    SettingsFile::write("[dateTime]\nautomaticDateTime=false\n" + settings);
    m_service = std::make_unique<FakeClockService>(false);
    auto app = std::make_unique<AppSession>(1);
    const auto isReady = [&app] { return app->item(chooser).isEnabled(); };
    if (!QTest::qWaitFor(isReady))
        qFatal("The clock cannot be set.");
    return app;
}

QStringList TestDateTimePage::runs() const
{
    return m_tools->runs(QStringLiteral("timedatectl"));
}

void TestDateTimePage::setPatience(AppSession &app, int milliseconds)
{
    auto *const page = app.item(QStringLiteral("page.1")).property("item").value<QQuickItem *>();
    page->setProperty("networkTimePatience", milliseconds);
    page->setProperty("clockPatience", milliseconds);
}

void TestDateTimePage::switchStoresAndAsksForNetworkTime_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<QString>("run");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("off") << true << QStringLiteral("set-ntp 0")
                         << QByteArray("[dateTime]\nautomaticDateTime=false\n");
    QTest::newRow("on") << false << QStringLiteral("set-ntp 1")
                        << QByteArray("[dateTime]\nautomaticDateTime=true\n");
}

void TestDateTimePage::switchStoresAndAsksForNetworkTime()
{
    QFETCH(bool, before);
    QFETCH(QString, run);
    QFETCH(QByteArray, stored);
    SettingsFile::write(before ? "[dateTime]\nautomaticDateTime=true\n"
                               : "[dateTime]\nautomaticDateTime=false\n");
    m_service = std::make_unique<FakeClockService>(before);
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")),
                 before ? QStringLiteral("On") : QStringLiteral("Off"));
    QVERIFY(runs().isEmpty());
    app.click(QStringLiteral("automaticDateTime"));
    QTRY_COMPARE(runs(), QStringList{run});
    QCOMPARE(SettingsFile::content(), stored);
}

void TestDateTimePage::clockCannotBeSetWhileItIsKeptAutomatically()
{
    m_service = std::make_unique<FakeClockService>(true);
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("On"));
    QVERIFY(!app.item(chooser).isEnabled());
    QCOMPARE(app.property(chooser, "description").toString(),
             QStringLiteral("Turn off automatic date and time to set the clock by hand"));
    app.click(chooser);
    QVERIFY(!app.isVisible(QStringLiteral("clock.year")));
}

void TestDateTimePage::clockCanBeSetOnceNetworkTimeIsReallyOff()
{
    m_service = std::make_unique<FakeClockService>(true);
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("On"));
    app.click(QStringLiteral("automaticDateTime"));
    QTRY_COMPARE(runs(), QStringList{QStringLiteral("set-ntp 0")});
    QVERIFY(!app.item(chooser).isEnabled());
    QCOMPARE(app.property(chooser, "description").toString(),
             QStringLiteral("Not possible before network time is off"));
    QCOMPARE(app.text(QStringLiteral("networkTimeReport")), QStringLiteral("Stopping…"));

    m_service->setNetworkTime(false);
    QTRY_VERIFY(app.item(chooser).isEnabled());
    QCOMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("Off"));
    QCOMPARE(app.text(QStringLiteral("networkTimeReport")), QString());
}

void TestDateTimePage::waitingForNetworkTimeEndsAndCanBeRepeated()
{
    m_service = std::make_unique<FakeClockService>(true);
    AppSession app(1);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("On"));
    setPatience(app, 200);
    app.click(QStringLiteral("automaticDateTime"));
    QTRY_COMPARE(app.text(QStringLiteral("networkTimeReport")),
                 QStringLiteral("Network time has not stopped."));
    QVERIFY(!app.item(chooser).isEnabled());

    m_tools->clear();
    app.click(QStringLiteral("networkTimeAgain"));
    QTRY_COMPARE(runs(), QStringList{QStringLiteral("set-ntp 0")});
    m_service->setNetworkTime(false);
    QTRY_VERIFY(app.item(chooser).isEnabled());
    QVERIFY(!app.isVisible(QStringLiteral("networkTimeAgain")));
}

void TestDateTimePage::withoutAClockServiceTheStateIsNotKnown()
{
    SettingsFile::write("[dateTime]\nautomaticDateTime=false\n");
    AppSession app(1);
    setPatience(app, 200);
    QTRY_COMPARE(app.text(QStringLiteral("networkTime")), QStringLiteral("Not known"));
    QVERIFY(!app.item(chooser).isEnabled());
    QCOMPARE(app.property(chooser, "description").toString(),
             QStringLiteral("Not possible without the clock service"));
    QTRY_COMPARE(app.text(QStringLiteral("networkTimeReport")),
                 QStringLiteral("The clock service does not answer."));
    m_service = std::make_unique<FakeClockService>(false);
    QTRY_VERIFY(app.item(chooser).isEnabled());
}

void TestDateTimePage::pickerOffersOnlyDaysThatExist_data()
{
    QTest::addColumn<QString>("year");
    QTest::addColumn<QString>("month");
    QTest::addColumn<int>("days");
    QTest::newRow("leap year") << QStringLiteral("2028") << QStringLiteral("Feb") << 29;
    QTest::newRow("no leap year") << QStringLiteral("2027") << QStringLiteral("Feb") << 28;
    QTest::newRow("January") << QStringLiteral("2027") << QStringLiteral("Jan") << 31;
    QTest::newRow("April") << QStringLiteral("2027") << QStringLiteral("Apr") << 30;
    QTest::newRow("December") << QStringLiteral("2027") << QStringLiteral("Dec") << 31;
}

void TestDateTimePage::pickerOffersOnlyDaysThatExist()
{
    QFETCH(QString, year);
    QFETCH(QString, month);
    QFETCH(int, days);
    const auto app = session();
    app->click(chooser);
    turn(*app, QStringLiteral("month"), QStringLiteral("Jan"));
    turn(*app, QStringLiteral("day"), QStringLiteral("31"));
    turn(*app, QStringLiteral("year"), year);
    turn(*app, QStringLiteral("month"), month);
    const QStringList entries = app->property(QStringLiteral("clock.day"), "entries").toStringList();
    QCOMPARE(entries.size(), days);
    QCOMPARE(entries.first(), QStringLiteral("1"));
    QCOMPARE(entries.last(), QString::number(days));
    // The thirty-first has become a day that there is, and is shown as such.
    const QString now = picked(*app, QStringLiteral("day"));
    QVERIFY2(now.toInt() >= 28 && now.toInt() <= days, qPrintable(now));
    const QRectF day = app->rectangle(QStringLiteral("clock.day.") + now);
    QCOMPARE(day.center().y(), app->rectangle(QStringLiteral("clock.day")).center().y());
}

void TestDateTimePage::dateIsSetBeforeTheTime_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("hour");
    QTest::addColumn<QString>("half");
    QTest::addColumn<QString>("time");
    QTest::newRow("evening") << QByteArray() << QStringLiteral("9") << QStringLiteral("PM")
                             << QStringLiteral("set-time 21:07");
    QTest::newRow("midnight") << QByteArray() << QStringLiteral("12") << QStringLiteral("AM")
                              << QStringLiteral("set-time 00:07");
    QTest::newRow("noon") << QByteArray() << QStringLiteral("12") << QStringLiteral("PM")
                          << QStringLiteral("set-time 12:07");
    QTest::newRow("24 hours") << QByteArray("24Hour=true\n") << QStringLiteral("09") << QString()
                              << QStringLiteral("set-time 09:07");
}

void TestDateTimePage::dateIsSetBeforeTheTime()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, hour);
    QFETCH(QString, half);
    QFETCH(QString, time);
    const auto app = session(settings);
    app->click(chooser);
    QCOMPARE(app->isVisible(QStringLiteral("clock.half")), !half.isEmpty());
    turn(*app, QStringLiteral("year"), QStringLiteral("2024"));
    turn(*app, QStringLiteral("month"), QStringLiteral("Feb"));
    turn(*app, QStringLiteral("day"), QStringLiteral("9"));
    turn(*app, QStringLiteral("hour"), hour);
    turn(*app, QStringLiteral("minute"), QStringLiteral("07"));
    if (!half.isEmpty())
        turn(*app, QStringLiteral("half"), half);
    app->click(QStringLiteral("clock.set"));
    QTRY_COMPARE(runs(), QStringList({QStringLiteral("set-time 2024-02-09"), time}));
}

void TestDateTimePage::timeAloneIsSetWhereTheDateStays()
{
    const auto app = session(QByteArray("24Hour=true\n"));
    app->click(chooser);
    turn(*app, QStringLiteral("hour"), QStringLiteral("05"));
    turn(*app, QStringLiteral("minute"), QStringLiteral("59"));
    app->click(QStringLiteral("clock.set"));
    QTRY_COMPARE(runs(), QStringList{QStringLiteral("set-time 05:59")});
}

void TestDateTimePage::cancelledPickerSetsNothing()
{
    const auto app = session();
    app->click(chooser);
    turn(*app, QStringLiteral("minute"), QStringLiteral("30"));
    app->click(QStringLiteral("clock.cancel"));
    QTRY_VERIFY(!app->isVisible(QStringLiteral("clock.year")));
    app->click(chooser);
    QTest::keyClick(app->window(), Qt::Key_Escape);
    QTRY_VERIFY(!app->isVisible(QStringLiteral("clock.year")));
    QVERIFY(runs().isEmpty());
}

void TestDateTimePage::wheelsTurnByKeys()
{
    const auto app = session(QByteArray("24Hour=true\n"));
    app->press(chooser, Qt::Key_Return);
    const QString minute = QStringLiteral("clock.minute");
    app->press(minute, Qt::Key_Home);
    QCOMPARE(picked(*app, QStringLiteral("minute")), QStringLiteral("00"));
    QTest::keyClick(app->window(), Qt::Key_Up);
    QCOMPARE(picked(*app, QStringLiteral("minute")), QStringLiteral("00"));
    QTest::keyClick(app->window(), Qt::Key_Down);
    QTest::keyClick(app->window(), Qt::Key_PageDown);
    QCOMPARE(picked(*app, QStringLiteral("minute")), QStringLiteral("11"));
    QTest::keyClick(app->window(), Qt::Key_End);
    QCOMPARE(picked(*app, QStringLiteral("minute")), QStringLiteral("59"));

    // Once round: every wheel, Cancel and Set, and the focus is always to be seen.
    QSet<QQuickItem *> visited;
    for (int press = 0; press < 7; ++press) {
        QTest::keyClick(app->window(), Qt::Key_Tab);
        QVERIFY(app->window()->activeFocusItem()->property("visualFocus").toBool());
        visited += app->window()->activeFocusItem();
    }
    QCOMPARE(visited.size(), 7);
    app->press(QStringLiteral("clock.set"), Qt::Key_Return);
    QTRY_VERIFY(!runs().isEmpty());
}

void TestDateTimePage::wheelsTurnByAFinger()
{
    const auto app = session();
    app->click(chooser);
    turn(*app, QStringLiteral("minute"), QStringLiteral("30"));
    const QQuickItem &wheel = app->item(QStringLiteral("clock.minute"));
    const QPointF middle(wheel.width() / 2, wheel.height() / 2);
    app->slideFinger(QStringLiteral("clock.minute"), middle, middle - QPointF(0, 140));
    QTRY_VERIFY(picked(*app, QStringLiteral("minute")).toInt() > 30);
    // It comes to rest with one entry in the middle.
    const auto rests = [&app] {
        const QString entry = QStringLiteral("clock.minute.") + picked(*app, QStringLiteral("minute"));
        return qAbs(app->rectangle(entry).center().y()
                    - app->rectangle(QStringLiteral("clock.minute")).center().y())
            < 1;
    };
    QTRY_VERIFY(rests());
}

void TestDateTimePage::everyTargetOfThePickerIsBigEnoughForAFinger()
{
    const auto app = session();
    app->click(chooser);
    for (const char *part : {"year", "month", "day", "hour", "minute", "half", "cancel", "set"}) {
        const QRectF place = app->rectangle(QStringLiteral("clock.") + QLatin1String(part));
        QVERIFY2(place.width() >= 48 && place.height() >= 48, part);
        QVERIFY2(QRectF(0, 0, 800, 480).contains(place), part);
    }
    const QString day = QStringLiteral("clock.day.") + picked(*app, QStringLiteral("day"));
    QVERIFY(app->rectangle(day).height() >= 48);
}

void TestDateTimePage::partsOfTheDateStandInTheOrderOfTheFormat()
{
    const auto app = session(QByteArray("dateFormat=dd.MM.yyyy\n"));
    app->click(chooser);
    const double day = app->rectangle(QStringLiteral("clock.day")).x();
    const double month = app->rectangle(QStringLiteral("clock.month")).x();
    const double year = app->rectangle(QStringLiteral("clock.year")).x();
    QVERIFY(day < month);
    QVERIFY(month < year);
}

void TestDateTimePage::clockThatIsNotChangedIsReported()
{
    const auto app = session();
    setPatience(*app, 300);
    m_tools->setScript(QStringLiteral("timedatectl"), "exit 1");
    app->click(chooser);
    turn(*app, QStringLiteral("year"), QStringLiteral("2021"));
    app->click(QStringLiteral("clock.set"));
    QCOMPARE(app->property(chooser, "description").toString(), QStringLiteral("Setting the clock…"));
    QTRY_COMPARE(app->property(chooser, "warning").toString(),
                 QStringLiteral("The clock was not changed: the device has refused it, or is busy."));
    QVERIFY(app->item(chooser).isEnabled());
}

void TestDateTimePage::hangingToolHoldsThePageForHalfASecondOnly()
{
    const auto app = session();
    setPatience(*app, 1000);
    m_tools->setScript(QStringLiteral("timedatectl"), "exec sleep 2");
    app->click(chooser);
    turn(*app, QStringLiteral("year"), QStringLiteral("2021"));
    QElapsedTimer elapsed;
    app->item(QStringLiteral("clock.set"));
    elapsed.start();
    app->click(QStringLiteral("clock.set"));
    QVERIFY2(elapsed.elapsed() < 1500, qPrintable(QString::number(elapsed.elapsed())));
    // The time could not follow the date.
    QTRY_VERIFY(!app->property(chooser, "warning").toString().isEmpty());
    QCOMPARE(runs().size(), 1);
}

QTEST_MAIN(TestDateTimePage)
#include "tst_datetimepage.moc"
