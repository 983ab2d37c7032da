// Every control of every page: what a finger or a key on it puts into the settings file, what the utility
// daemon is told, and what the analytics library gets.
#include "appsession.h"
#include "devicetools.h"
#include "settingsfile.h"
#include "utilitydaemon.h"

#include <QtTest/QtTest>

class TestControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void sliderStoresEachStepOnceWhileItMoves();
    void sliderStoresTheStepThatIsTouched();
    void sliderMovedByKeysStoresEachStep();
    void sliderTouchedAtItsPlaceStoresNothing();
    void switchStoresTheOtherState_data();
    void switchStoresTheOtherState();
    void switchIsTurnedByTheSpaceKey();
    void choiceIsStored_data();
    void choiceIsStored();
    void choiceByKeysIsStored();
    void currentChoiceIsInTheMiddleWhereThereIsMore();
    void choiceThatIsCancelledStoresNothing();
    void timeZoneIsPickedWithTwoTouches();
    void timeZonesOpenAtTheStoredOne();
    void timeZoneThatIsCancelledStoresNothing();
    void clockShowsTheChosenFormat();
    void changeIsReportedOnlyWhereTheUserAllowsIt();
    void fingerMovesTheSlider();
    void fingerThatScrollsOverControlsStoresNothing_data();
    void fingerThatScrollsOverControlsStoresNothing();
    void everyTargetIsBigEnoughForAFinger_data();
    void everyTargetIsBigEnoughForAFinger();
    void noTextIsCut_data();
    void noTextIsCut();
    void keyboardReachesEveryControlAndShowsWhere_data();
    void keyboardReachesEveryControlAndShowsWhere();

private:
    QString lastCall();
    QByteArray spool() const;

    UtilityDaemon m_daemon;
    DeviceTools m_tools; // instead of the machine's own
};

namespace {

constexpr int tabs = 12;

QString describe(const UtilityDaemon::Call &call)
{
    return QStringLiteral("%1(%2 %3)").arg(call.method, call.signature, call.arguments.value(0).toString());
}

QString spoolFile()
{
    return qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Corvanta/analytics/events.jsonl");
}

QList<QQuickItem *> visibleControls(QQuickItem *root)
{
    QList<QQuickItem *> controls;
    if (!root->isVisible() || !root->isEnabled())
        return controls;
    if (root->inherits("QQuickControl") && root->activeFocusOnTab())
        controls += root;
    for (QQuickItem *child : root->childItems())
        controls += visibleControls(child);
    return controls;
}

QStringList cutTexts(QQuickItem *root)
{
    QStringList texts;
    if (!root->isVisible())
        return texts;
    if (root->property("truncated").toBool())
        texts += root->property("text").toString();
    for (QQuickItem *child : root->childItems())
        texts += cutTexts(child);
    return texts;
}

void addTabs()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<int>("controls");
    QTest::newRow("General") << 0 << 10;
    QTest::newRow("Date & Time") << 1 << 4;
    QTest::newRow("Networking") << 2 << 1;
    QTest::newRow("System Updates") << 3 << 1;
    QTest::newRow("Languages") << 4 << 2;
    QTest::newRow("Users & Passwords") << 5 << 1;
    QTest::newRow("Printer") << 6 << 8;
    QTest::newRow("Printer alignment") << 7 << 8;
    QTest::newRow("Presets") << 8 << 1;
    QTest::newRow("About") << 9 << 2;
    QTest::newRow("Printer advanced") << 10 << 5;
    QTest::newRow("Print history") << 11 << 1;
}

} // namespace

void TestControls::initTestCase()
{
    QVERIFY2(m_daemon.start(), qPrintable(m_daemon.errorText()));
}

void TestControls::init()
{
    SettingsFile::removeAll();
    QFile::remove(spoolFile());
    QVERIFY(m_daemon.clearCalls());
}

QString TestControls::lastCall()
{
    const QVector<UtilityDaemon::Call> calls = m_daemon.calls();
    return calls.isEmpty() ? QString() : describe(calls.last());
}

QByteArray TestControls::spool() const
{
    QFile file(spoolFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestControls::sliderStoresEachStepOnceWhileItMoves()
{
    AppSession app;
    const QString slider = QStringLiteral("brightnessLevel");
    QVERIFY(m_daemon.clearCalls());
    app.drag(slider, AppSession::handlePlace(app.item(slider), 7),
             AppSession::handlePlace(app.item(slider), 3));

    QStringList calls;
    for (const UtilityDaemon::Call &call : m_daemon.calls())
        calls += describe(call);
    QCOMPARE(calls,
             QStringList(
                 {QStringLiteral("setDisplayBrightness(u 6)"), QStringLiteral("setDisplayBrightness(u 5)"),
                  QStringLiteral("setDisplayBrightness(u 4)"), QStringLiteral("setDisplayBrightness(u 3)")}));
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=3\n"));
    QCOMPARE(app.text(QStringLiteral("brightnessLevel.value")), QStringLiteral("3"));
}

void TestControls::sliderStoresTheStepThatIsTouched()
{
    AppSession app;
    QVERIFY(m_daemon.clearCalls());
    const QQuickItem &slider = app.item(QStringLiteral("brightnessLevel"));
    QTest::mouseClick(app.window(), Qt::LeftButton, Qt::NoModifier,
                      slider.mapToScene(AppSession::handlePlace(slider, 9)).toPoint());
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=9\n"));
    QCOMPARE(m_daemon.calls().size(), 1);
    QCOMPARE(lastCall(), QStringLiteral("setDisplayBrightness(u 9)"));
}

void TestControls::sliderMovedByKeysStoresEachStep()
{
    AppSession app;
    QVERIFY(m_daemon.clearCalls());
    app.press(QStringLiteral("brightnessLevel"), Qt::Key_Left);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=6\n"));
    app.press(QStringLiteral("brightnessLevel"), Qt::Key_Right);
    app.press(QStringLiteral("brightnessLevel"), Qt::Key_Right);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=8\n"));
    app.press(QStringLiteral("brightnessLevel"), Qt::Key_Right);
    app.press(QStringLiteral("brightnessLevel"), Qt::Key_Right);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=9\n"));
    QCOMPARE(m_daemon.calls().size(), 4);
}

void TestControls::sliderTouchedAtItsPlaceStoresNothing()
{
    AppSession app;
    QVERIFY(m_daemon.clearCalls());
    const QQuickItem &slider = app.item(QStringLiteral("brightnessLevel"));
    QTest::mouseClick(app.window(), Qt::LeftButton, Qt::NoModifier,
                      slider.mapToScene(AppSession::handlePlace(slider, 7)).toPoint());
    QVERIFY(!SettingsFile::exists());
    QVERIFY(m_daemon.calls().isEmpty());
}

void TestControls::switchStoresTheOtherState_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("call");
    QTest::newRow("appListCollapsed") << 0 << QByteArray("[home]\nappListCollapsed=true\n")
                                      << QByteArray("[home]\nappListCollapsed=false\n") << QString();
    QTest::newRow("doubleClickOpen") << 0 << QByteArray("[home]\ndoubleClickOpen=true\n")
                                     << QByteArray("[home]\ndoubleClickOpen=false\n") << QString();
    QTest::newRow("mountSharedFolder") << 0 << QByteArray("[General]\nmountSharedFolder=true\n")
                                       << QByteArray("[General]\nmountSharedFolder=false\n") << QString();
    QTest::newRow("sendAnalytics") << 0 << QByteArray("[General]\nsendAnalytics=false\n")
                                   << QByteArray("[General]\nsendAnalytics=true\n") << QString();
    QTest::newRow("firstBootApplication")
        << 0 << QByteArray("[initialization]\nfirstBootApplication=true\n")
        << QByteArray("[initialization]\nfirstBootApplication=false\n") << QString();
    QTest::newRow("automaticDateTime") << 1 << QByteArray("[dateTime]\nautomaticDateTime=false\n")
                                       << QByteArray("[dateTime]\nautomaticDateTime=true\n") << QString();
    QTest::newRow("24Hour") << 1 << QByteArray("[dateTime]\n24Hour=true\n")
                            << QByteArray("[dateTime]\n24Hour=false\n")
                            << QStringLiteral("setTwentyFourHourMode(b true)");
    QTest::newRow("automaticUpdateCheck") << 3 << QByteArray("[updates]\nautomaticUpdateCheck=false\n")
                                          << QByteArray("[updates]\nautomaticUpdateCheck=true\n")
                                          << QStringLiteral("setAutomaticUpdateCheck(b false)");
    QTest::newRow("lockscreenAuto") << 5 << QByteArray("[lockscreen]\nlockscreenAuto=false\n")
                                    << QByteArray("[lockscreen]\nlockscreenAuto=true\n") << QString();
}

void TestControls::switchStoresTheOtherState()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QString, call);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    AppSession app(tab);
    QVERIFY(m_daemon.clearCalls());

    app.click(name);
    QCOMPARE(SettingsFile::content(), first);
    QCOMPARE(lastCall(), call);
    QCOMPARE(app.property(name, "checked").toBool(), first.contains("true"));

    app.click(name);
    QCOMPARE(SettingsFile::content(), second);
    QCOMPARE(app.property(name, "checked").toBool(), second.contains("true"));
}

void TestControls::switchIsTurnedByTheSpaceKey()
{
    AppSession app(1);
    app.press(QStringLiteral("24Hour"), Qt::Key_Space);
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\n24Hour=true\n"));
}

void TestControls::choiceIsStored_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("control");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("call");

    const QStringList times = {
        QStringLiteral("15 seconds"), QStringLiteral("30 seconds"), QStringLiteral("1 minute"),
        QStringLiteral("2 minutes"),  QStringLiteral("3 minutes"),  QStringLiteral("5 minutes"),
        QStringLiteral("10 minutes"), QStringLiteral("15 minutes"), QStringLiteral("20 minutes"),
        QStringLiteral("30 minutes"), QStringLiteral("1 hour"),     QStringLiteral("Never")};
    for (const int position : {0, 1, 6, 11}) {
        QTest::addRow("dimming %d", position)
            << 0 << QStringLiteral("dimmingInactive") << position << times.at(position)
            << "[display]\ndimmingInactive=" + QByteArray::number(position) + '\n'
            << QStringLiteral("setDisplayDimTime(i %1)").arg(position);
    }
    for (const int position : {0, 5, 10}) {
        QTest::addRow("power %d", position)
            << 0 << QStringLiteral("powerInactive") << position << times.at(position)
            << "[display]\npowerInactive=" + QByteArray::number(position) + '\n'
            << QStringLiteral("setDisplayPowerOffTime(i %1)").arg(position);
    }
    QTest::newRow("metric units") << 0 << QStringLiteral("units") << 1 << QStringLiteral("Metric (mm)")
                                  << QByteArray("[locale]\nunits=1\n") << QString();
    QTest::newRow("largest previews") << 0 << QStringLiteral("zoomLevel") << 4 << QStringLiteral("Largest")
                                      << QByteArray("[home]\nzoomLevel=4\n") << QString();
    QTest::newRow("date format") << 1 << QStringLiteral("dateFormat") << 5 << QStringLiteral("DD.MM.YYYY")
                                 << QByteArray("[dateTime]\ndateFormat=dd.MM.yyyy\n")
                                 << QStringLiteral("setDateFormat(s dd.MM.yyyy)");
    QTest::newRow("date format with comma")
        << 1 << QStringLiteral("dateFormat") << 8 << QStringLiteral("MMM D, YYYY")
        << QByteArray("[dateTime]\ndateFormat=\"MMM d, yyyy\"\n")
        << QStringLiteral("setDateFormat(s MMM d, yyyy)");
}

void TestControls::choiceIsStored()
{
    QFETCH(int, tab);
    QFETCH(QString, control);
    QFETCH(int, position);
    QFETCH(QString, shown);
    QFETCH(QByteArray, stored);
    QFETCH(QString, call);
    AppSession app(tab);
    QVERIFY(m_daemon.clearCalls());

    app.click(control);
    app.click(QStringLiteral("%1.%2").arg(control).arg(position));
    QCOMPARE(SettingsFile::content(), stored);
    QCOMPARE(lastCall(), call);
    QCOMPARE(app.property(control, "displayText").toString(), shown);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("%1.%2").arg(control).arg(position)));
}

void TestControls::choiceByKeysIsStored()
{
    AppSession app;
    app.press(QStringLiteral("dimmingInactive"), Qt::Key_Down);
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\ndimmingInactive=3\n"));
    QCOMPARE(lastCall(), QStringLiteral("setDisplayDimTime(i 3)"));
}

void TestControls::currentChoiceIsInTheMiddleWhereThereIsMore()
{
    const auto isInView = [](AppSession &app, const QString &name) {
        return app.isVisible(name) && QRectF(0, 0, 800, 480).contains(app.rectangle(name));
    };
    AppSession app;
    app.click(QStringLiteral("dimmingInactive"));
    for (const int position : {0, 1, 2, 3, 4})
        QVERIFY(isInView(app, QStringLiteral("dimmingInactive.%1").arg(position)));
    QTest::keyClick(app.window(), Qt::Key_Escape);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("dimmingInactive.2")));

    app.click(QStringLiteral("powerInactive"));
    for (const int position : {7, 8, 9, 10, 11})
        QVERIFY(isInView(app, QStringLiteral("powerInactive.%1").arg(position)));
}

void TestControls::choiceThatIsCancelledStoresNothing()
{
    AppSession app;
    app.click(QStringLiteral("dimmingInactive"));
    QVERIFY(app.isVisible(QStringLiteral("dimmingInactive.4")));
    QTest::mouseClick(app.window(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 240));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("dimmingInactive.4")));
    QVERIFY(!SettingsFile::exists());
}

void TestControls::timeZoneIsPickedWithTwoTouches()
{
    AppSession app(1);
    app.click(QStringLiteral("timezone"));
    app.click(QStringLiteral("region.Europe"));
    app.click(QStringLiteral("city.Europe/Andorra"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\ntimezone=Europe/Andorra\n"));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("regions")));
    QCOMPARE(app.property(QStringLiteral("timezone"), "value").toString(), QStringLiteral("Europe/Andorra"));
}

void TestControls::timeZonesOpenAtTheStoredOne()
{
    QVERIFY(SettingsFile::write("[dateTime]\ntimezone=America/New_York\n"));
    AppSession app(1);
    app.click(QStringLiteral("timezone"));
    const QRectF city = app.rectangle(QStringLiteral("city.America/New_York"));
    QVERIFY(app.rectangle(QStringLiteral("cities")).contains(city));
    QVERIFY(app.property(QStringLiteral("city.America/New_York"), "chosen").toBool());
    QVERIFY(app.property(QStringLiteral("region.America"), "chosen").toBool());
}

void TestControls::timeZoneThatIsCancelledStoresNothing()
{
    AppSession app(1);
    app.click(QStringLiteral("timezone"));
    app.click(QStringLiteral("region.Asia"));
    app.click(QStringLiteral("cancel"));
    QTRY_VERIFY(!app.isVisible(QStringLiteral("regions")));
    QVERIFY(!SettingsFile::exists());
}

void TestControls::clockShowsTheChosenFormat()
{
    AppSession app(1);
    const QRegularExpression twelveHours(QStringLiteral("^(1[0-2]|[1-9]):[0-5][0-9] [AP]M$"));
    const QRegularExpression twentyFourHours(QStringLiteral("^([01][0-9]|2[0-3]):[0-5][0-9]$"));
    QVERIFY(twelveHours.match(app.text(QStringLiteral("clock"))).hasMatch());
    app.click(QStringLiteral("24Hour"));
    QVERIFY(twentyFourHours.match(app.text(QStringLiteral("clock"))).hasMatch());
}

void TestControls::changeIsReportedOnlyWhereTheUserAllowsIt()
{
    AppSession app;
    app.click(QStringLiteral("doubleClickOpen"));
    QCOMPARE(spool().count('\n'), 1);
    QVERIFY2(spool().contains("\"hitType\":6,\"hit\":{\"eventType\":\"Setting_Change\",\"newValue\":\"true\","
                              "\"sessionId\":\"\",\"settingName\":\"doubleClickOpen\"}"),
             spool().constData());

    app.click(QStringLiteral("sendAnalytics"));
    app.click(QStringLiteral("doubleClickOpen"));
    QCOMPARE(spool().count('\n'), 1);

    app.click(QStringLiteral("sendAnalytics"));
    QCOMPARE(spool().count('\n'), 2);
    QVERIFY2(spool().contains("\"newValue\":\"true\",\"sessionId\":\"\",\"settingName\":\"sendAnalytics\""),
             spool().constData());
}

void TestControls::fingerMovesTheSlider()
{
    AppSession app;
    const QString slider = QStringLiteral("brightnessLevel");
    app.slideFinger(slider, AppSession::handlePlace(app.item(slider), 7),
                    AppSession::handlePlace(app.item(slider), 2));
    QCOMPARE(SettingsFile::content(), QByteArray("[display]\nbrightnessLevel=2\n"));
}

void TestControls::fingerThatScrollsOverControlsStoresNothing_data()
{
    QTest::addColumn<QString>("control");
    QTest::newRow("switch") << QStringLiteral("mountSharedFolder");
    QTest::newRow("choice") << QStringLiteral("zoomLevel");
    QTest::newRow("slider") << QStringLiteral("brightnessLevel");
}

void TestControls::fingerThatScrollsOverControlsStoresNothing()
{
    QFETCH(QString, control);
    AppSession app;
    const QQuickItem &target = app.item(control);
    const QPointF middle(target.width() / 2, target.height() / 2);
    const double before = app.property(QStringLiteral("pageScroll"), "contentY").toDouble();
    const auto hasScrolled = [&app, before] {
        return app.property(QStringLiteral("pageScroll"), "contentY").toDouble() != before;
    };
    // On a busy machine the page may see the finger come and go at once.
    for (int attempt = 0; attempt < 5 && !hasScrolled(); ++attempt)
        app.slideFinger(control, middle, middle + QPointF(0, before > 0 ? 120 : -120));
    QTRY_VERIFY(hasScrolled());
    QVERIFY(!SettingsFile::exists());
    QVERIFY(!app.isVisible(QStringLiteral("zoomLevel.0")));
}

void TestControls::everyTargetIsBigEnoughForAFinger_data()
{
    addTabs();
}

void TestControls::everyTargetIsBigEnoughForAFinger()
{
    QFETCH(int, tab);
    QFETCH(int, controls);
    AppSession app(tab);
    // The page About takes touches on all of its controls once it has read everything.
    QTRY_COMPARE(visibleControls(app.window()->contentItem()).size(), tabs + controls);
    const QList<QQuickItem *> targets = visibleControls(app.window()->contentItem());
    for (const QQuickItem *target : targets) {
        QVERIFY2(target->width() >= 48 && target->height() >= 48,
                 qPrintable(QStringLiteral("%1: %2x%3")
                                .arg(target->objectName())
                                .arg(target->width())
                                .arg(target->height())));
    }
}

void TestControls::noTextIsCut_data()
{
    addTabs();
}

void TestControls::noTextIsCut()
{
    QFETCH(int, tab);
    QVERIFY(SettingsFile::write("[dateTime]\ntimezone=America/Argentina/Buenos_Aires\n"
                                "[locale]\nkeyboardLayout=us(dvorak-alt-intl)\nlanguage=zh_tw\n"));
    AppSession app(tab);
    QTRY_COMPARE(cutTexts(app.window()->contentItem()), QStringList());
}

void TestControls::keyboardReachesEveryControlAndShowsWhere_data()
{
    addTabs();
}

void TestControls::keyboardReachesEveryControlAndShowsWhere()
{
    QFETCH(int, tab);
    QFETCH(int, controls);
    AppSession app(tab);
    QTRY_COMPARE(visibleControls(app.window()->contentItem()).size(), tabs + controls);
    QSet<QQuickItem *> left;
    for (QQuickItem *control : visibleControls(app.window()->contentItem()))
        left += control;
    const int presses = left.size();
    for (int press = 0; press < presses; ++press) {
        QTest::keyClick(app.window(), Qt::Key_Tab);
        QQuickItem *const focused = app.window()->activeFocusItem();
        QVERIFY2(left.remove(focused), qPrintable(focused->objectName()));
        QVERIFY2(focused->property("visualFocus").toBool(), qPrintable(focused->objectName()));
        const QRectF place = focused->mapRectToScene(QRectF(0, 0, focused->width(), focused->height()));
        QVERIFY2(QRectF(QPointF(0, 0), app.window()->size()).contains(place),
                 qPrintable(focused->objectName()));
    }
    QVERIFY(left.isEmpty());
}

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
