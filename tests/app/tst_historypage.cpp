// The page Print history: what it shows of the jobs, that it keeps its place, and what it says of what it
// asked for.
#include "appsession.h"
#include "messagelog.h"
#include "printqueue.h"
#include "settingsfile.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

// As QTRY_VERIFY and QTRY_COMPARE, which look every 50 ms only: with so many changes to wait for, that adds
// up.
#define VERIFY_SOON(condition) QVERIFY(QTest::qWaitFor([&] { return condition; }))
#define COMPARE_SOON(actual, expected)                                                                       \
    do {                                                                                                     \
        static_cast<void>(QTest::qWaitFor([&] { return (actual) == (expected); }));                          \
        QCOMPARE(actual, expected);                                                                          \
    } while (false)

class TestHistoryPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("QT_QPA_UPDATE_IDLE_TIME", "0"); } // pictures need not wait for a screen
    void init() { SettingsFile::removeAll(); }

    void jobsAppearByThemselvesNewestFirst();
    void rowShowsWhatIsKnownOfItsJob();
    void statusIsAWordAndASign();
    void oddTextsAreOnePlainLine();
    void pictureIsShownWhereItCanBeRead();
    void detailsHoldAllValuesAndFollowTheJob();
    void placeIsKeptWhileJobsComeAndChange();
    void thousandJobsScrollWithFewRows();
    void reprintAsksFirst();
    void reprintedJobAppearsAndIsSaid();
    void reprintThatFailedIsNotSaidToBePrinted();
    void reprintThatIsForgottenIsNotSaidToBePrinted();
    void hangingQueueIsSaidAndReadWhenItAnswers();
    void listThatCannotBeHadIsNotSaidToBeEmpty();
    void hangingQueueIsGivenNoOrder();
    void orderWithoutEffectIsNotSaidToBeDone();
    void slowClearIsReportedWhenItShows();
    void jobsThatCannotBeReadAreNotSaidToBeCleared();
    void jobThatComesBackIsNotSaidToBePrinted();
    void clearAsksFirst();
    void clearLeavesUnfinishedJobs();
    void absentQueueIsSaidAndWhatWasKnownStays();
    void queueThatComesLaterIsRead();
    void keysMoveOpenAndClose();
    void bothScreensHaveRoomForARow();
    void exampleOfTheModuleListsTheJobs();
};

namespace {

constexpr int history = 11;

QString name(int row)
{
    return QStringLiteral("job.%1").arg(row);
}

/// The text of an item after the window was drawn: rows are made then.
QString seen(AppSession &app, const QString &item)
{
    app.rectangle(item);
    return app.text(item);
}

/// The page with its list as it is now.
std::unique_ptr<AppSession> openPage(int jobs)
{
    auto app = std::make_unique<AppSession>(history);
    const QQuickItem &page = app->item(QStringLiteral("history.page"));
    const QQuickItem &list = app->item(QStringLiteral("pageScroll"));
    const auto isRead = [&] {
        return page.property("isRead").toBool() && list.property("count").toInt() == jobs;
    };
    if (!QTest::qWaitFor(isRead))
        qFatal("The jobs do not appear.");
    app->rectangle(QStringLiteral("pageTitle"));
    return app;
}

double scrolled(AppSession &app)
{
    return app.property(QStringLiteral("pageScroll"), "contentY").toDouble();
}

/// Where on the page the job with this name is; far away where it is not in view.
double placeOf(AppSession &app, const QString &text)
{
    const QQuickItem &list = app.item(QStringLiteral("pageScroll"));
    const auto *const content = list.property("contentItem").value<QQuickItem *>();
    for (QQuickItem *const row : content->childItems()) {
        if (row->isVisible() && row->property("job").toMap().value(QStringLiteral("jobName")) == text)
            return row->mapToScene(QPointF()).y();
    }
    return -10000;
}

void reprintFirst(AppSession &app)
{
    app.click(name(0));
    app.click(QStringLiteral("job.reprint"));
    app.click(QStringLiteral("confirmation.confirm"));
}

QString reportOf(AppSession &app)
{
    return seen(app, QStringLiteral("history.report"));
}

} // namespace

void TestHistoryPage::jobsAppearByThemselvesNewestFirst()
{
    PrintQueue queue;
    const auto app = openPage(0);
    COMPARE_SOON(seen(*app, QStringLiteral("history.none")), QStringLiteral("No print jobs"));
    QCOMPARE(reportOf(*app), QString());
    for (const int minute : {5, 7, 6})
        queue.set(PrintQueue::job(minute));
    COMPARE_SOON(reportOf(*app), QStringLiteral("3 jobs, newest first"));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 7"));
    QCOMPARE(seen(*app, name(1)), QStringLiteral("job 6"));
    QCOMPARE(seen(*app, name(2)), QStringLiteral("job 5"));
    QVERIFY(!app->isVisible(QStringLiteral("history.none")));
    QVERIFY(!app->isVisible(QStringLiteral("history.trouble")));
}

void TestHistoryPage::rowShowsWhatIsKnownOfItsJob()
{
    PrintQueue queue(1);
    const auto app = openPage(1);
    QCOMPARE(reportOf(*app), QStringLiteral("1 job"));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 0"));
    QCOMPARE(seen(*app, QStringLiteral("job.0.state")), QStringLiteral("Printed · 03/05/2021 00:00am"));
    QCOMPARE(seen(*app, QStringLiteral("job.0.counts")),
             QStringLiteral("Copies 2 · Series 1 · Heat 104 / 98 · Tension 3 / -2"));
    QCOMPARE(seen(*app, QStringLiteral("job.0.supplies")), QStringLiteral("Media BM-4000 · Ribbon 1 RB-110"));
    PrintJobMetaData bare;
    bare.GUID = PrintQueue::job(0).GUID;
    bare.copyCount = 1;
    queue.set(bare);
    COMPARE_SOON(seen(*app, name(0)), QStringLiteral("Unnamed document"));
    QCOMPARE(seen(*app, QStringLiteral("job.0.supplies")), QStringLiteral("No supplies known"));
}

void TestHistoryPage::statusIsAWordAndASign()
{
    const struct
    {
        const char *status;
        int error;
        const char *text;
        const char *icon;
    } rows[] = {{"Waiting", 0, "Waiting · 03/05/2021 00:00am", "clock"},
                {"Held", 0, "Held · 03/05/2021 00:00am", "pause"},
                {"Printing", 0, "Printing · 03/05/2021 00:00am", "printer"},
                {"Stopped", 0, "Stopped · 03/05/2021 00:00am", "pause"},
                {"Printed", 0, "Printed · 03/05/2021 00:00am", "check"},
                {"Cancelled", 2, "Cancelled · 03/05/2021 00:00am", "cross"},
                {"Failed", 3, "Failed · 03/05/2021 00:00am · Lost", "warning"},
                {"Sleeping", 17, "Sleeping · 03/05/2021 00:00am · Error 17", "information"},
                {"toString", 0, "toString · 03/05/2021 00:00am", "information"}};
    PrintQueue queue(1);
    const auto app = openPage(1);
    for (const auto &row : rows) {
        PrintJobMetaData job = PrintQueue::job(0);
        job.jobStatus = QString::fromLatin1(row.status);
        job.errorValue = row.error;
        queue.set(job);
        COMPARE_SOON(seen(*app, QStringLiteral("job.0.state")), QString::fromUtf8(row.text));
        QCOMPARE(app->property(QStringLiteral("job.0.icon"), "name").toString(),
                 QString::fromLatin1(row.icon));
    }
}

void TestHistoryPage::oddTextsAreOnePlainLine()
{
    PrintQueue queue;
    PrintJobMetaData job = PrintQueue::job(0);
    job.jobName = QStringLiteral("<b>two</b>\nlines %1 ") + QString(5000, QLatin1Char('W'));
    job.jobStatus = QString(200, QLatin1Char('W'));
    job.errorValue = 17;
    job.supplySKU = QStringLiteral("S\u2028K\tU");
    queue.set(job);
    const auto app = openPage(1);
    QCOMPARE(seen(*app, name(0)).left(22), QStringLiteral("<b>two</b> lines %1 WW"));
    QVERIFY(seen(*app, name(0)).size() <= 200);
    QVERIFY(app->property(name(0), "truncated").toBool());
    QVERIFY(seen(*app, QStringLiteral("job.0.supplies")).startsWith(QStringLiteral("Media S K U · ")));
    const QString state = seen(*app, QStringLiteral("job.0.state"));
    QVERIFY2(state.startsWith(QStringLiteral("WW")), qPrintable(state));
    QVERIFY2(state.endsWith(QStringLiteral(" · 03/05/2021 00:00am · Error 17")), qPrintable(state));
    QVERIFY(!app->property(QStringLiteral("job.0.state"), "truncated").toBool());
    app->click(name(0));
    app->click(QStringLiteral("job.reprint"));
    QCOMPARE(seen(*app, QStringLiteral("confirmation.text")).left(23),
             QStringLiteral("“<b>two</b> lines %1 WW"));
    // A name whose letters run to the left begins where the others do.
    job.jobName = QStringLiteral("\u05e9\u05dc\u05d5\u05dd");
    queue.set(job);
    COMPARE_SOON(seen(*app, name(0)), job.jobName);
    QCOMPARE(app->property(name(0), "effectiveHorizontalAlignment").toInt(), int(Qt::AlignLeft));
}

void TestHistoryPage::pictureIsShownWhereItCanBeRead()
{
    const QTemporaryDir folder;
    QImage picture(1500, 1500, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QStringList shown = {folder.filePath(QStringLiteral("picture.png")),
                               folder.filePath(QStringLiteral("50% of #1?.png"))};
    const QStringList files = shown + QStringList{folder.filePath(QStringLiteral("missing.png")), QString()};
    QVERIFY(picture.save(shown.at(0)) && QFile::copy(shown.at(0), shown.at(1)));
    PrintQueue queue;
    for (int i = 0; i < files.size(); ++i) {
        PrintJobMetaData job = PrintQueue::job(10 - i);
        job.imagePath = files.at(i);
        queue.set(job);
    }
    MessageLog messages;
    const auto app = openPage(4);
    const auto has = [&app](int row, const char *state) {
        return app->property(QStringLiteral("job.%1.picture").arg(row), state).toBool();
    };
    // The sign that there is none is not shown before that is known.
    QVERIFY(!has(0, "isMissing") && !has(1, "isMissing"));
    VERIFY_SOON(has(0, "isShown") && has(1, "isShown"));
    COMPARE_SOON(messages.texts().filter(QStringLiteral("Cannot open")).size(), 1);
    for (int row = 0; row < files.size(); ++row) {
        QCOMPARE(has(row, "isShown"), row < shown.size());
        QCOMPARE(has(row, "isMissing"), row >= shown.size());
    }
}

void TestHistoryPage::detailsHoldAllValuesAndFollowTheJob()
{
    PrintQueue queue(3);
    const auto app = openPage(3);
    app->click(name(1));
    const auto shown = [&app](const char *part) {
        return seen(*app, QStringLiteral("job.") + QLatin1String(part));
    };
    QCOMPARE(shown("name"), QStringLiteral("job 1"));
    QCOMPARE(shown("state"), QStringLiteral("Printed"));
    QCOMPARE(shown("time"), QStringLiteral("03/05/2021 00:01am"));
    QCOMPARE(shown("error"), QStringLiteral("None"));
    QCOMPARE(shown("copies"), QStringLiteral("2"));
    QCOMPARE(shown("series"), QStringLiteral("1"));
    QCOMPARE(shown("heat"), QStringLiteral("104 / 98"));
    QCOMPARE(shown("tension"), QStringLiteral("3 / -2"));
    QCOMPARE(shown("media"), QStringLiteral("BM-4000, White, mileage 812.5"));
    QCOMPARE(shown("ribbon1"), QStringLiteral("RB-110, Black, mileage 40.0"));
    QCOMPARE(shown("ribbon2"), QStringLiteral("Not known"));

    PrintJobMetaData changed = PrintQueue::job(1);
    changed.jobStatus = QStringLiteral("Failed");
    changed.errorValue = 1;
    queue.set(changed);
    COMPARE_SOON(shown("state"), QStringLiteral("Failed"));
    QCOMPARE(shown("error"), QStringLiteral("Failed"));
    const QVector<QPair<double, QString>> mileages = {{0, QStringLiteral("mileage 0.0")},
                                                      {1e300, QStringLiteral("mileage 1.0e+300")},
                                                      {qQNaN(), QStringLiteral("mileage –")}};
    for (const auto &mileage : mileages) {
        changed.supplyMileage = mileage.first;
        queue.set(changed);
        COMPARE_SOON(shown("media"), QStringLiteral("BM-4000, White, ") + mileage.second);
    }
    queue.remove(changed.GUID);
    VERIFY_SOON(!app->isVisible(QStringLiteral("job.close")));
}

void TestHistoryPage::placeIsKeptWhileJobsComeAndChange()
{
    PrintQueue queue(200);
    const auto app = openPage(200);
    app->item(QStringLiteral("pageScroll")).setProperty("contentY", 8000);
    const QString inView = QStringLiteral("job 123");
    const double place = placeOf(*app, inView);
    QVERIFY(place > 0);

    PrintJobMetaData changed = PrintQueue::job(123);
    changed.jobStatus = QStringLiteral("Failed");
    queue.set(changed);
    VERIFY_SOON(seen(*app, QStringLiteral("job.76.state")).startsWith(QStringLiteral("Failed")));
    QCOMPARE(placeOf(*app, inView), place);

    for (const int minute : {2000, 2001, 2002})
        queue.set(PrintQueue::job(minute));
    COMPARE_SOON(reportOf(*app), QStringLiteral("203 jobs, newest first"));
    QCOMPARE(placeOf(*app, inView), place);
    queue.remove(PrintQueue::job(190).GUID);
    COMPARE_SOON(reportOf(*app), QStringLiteral("202 jobs, newest first"));
    QCOMPARE(placeOf(*app, inView), place);
    // And the new ones are above the others. There a newer one is seen at once.
    app->item(QStringLiteral("pageScroll")).forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(app->window(), Qt::Key_Home);
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 2002"));
    const double top = placeOf(*app, QStringLiteral("job 2002"));
    QVERIFY(top > 0);
    queue.set(PrintQueue::job(2003));
    COMPARE_SOON(placeOf(*app, QStringLiteral("job 2003")), top);
    QVERIFY(placeOf(*app, QStringLiteral("job 2002")) > top);
}

void TestHistoryPage::thousandJobsScrollWithFewRows()
{
    PrintQueue queue(1000);
    const auto app = openPage(1000);
    QQuickItem &list = app->item(QStringLiteral("pageScroll"));
    QCOMPARE(list.property("contentHeight").toDouble(), 108000.0);
    int made = 0;
    for (int step = 0; step < 30; ++step) {
        list.setProperty("contentY", step * 3500);
        app->item(QStringLiteral("pageScroll"));
        made = qMax(made, list.property("contentItem").value<QQuickItem *>()->childItems().size());
    }
    // Rows in view, some beside and in reserve: not one for each job.
    QVERIFY2(made < 30, qPrintable(QString::number(made)));
    QVERIFY(scrolled(*app) > 100000);
}

void TestHistoryPage::reprintAsksFirst()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    app->click(name(1));
    app->click(QStringLiteral("job.reprint"));
    QCOMPARE(seen(*app, QStringLiteral("confirmation.text")),
             QStringLiteral("“job 0” is sent to the printer as a new job."));
    app->click(QStringLiteral("confirmation.cancel"));
    app->click(QStringLiteral("job.reprint"));
    // Leaving the page closes all that lies over it.
    QMetaObject::invokeMethod(app->window(), "showTab", Q_ARG(QVariant, 5));
    QTest::qWait(60);
    QCOMPARE(queue.orders(), QStringList());
    QVERIFY(!app->isVisible(QStringLiteral("confirmation.confirm")));
}

void TestHistoryPage::reprintedJobAppearsAndIsSaid()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    reprintFirst(*app);
    COMPARE_SOON(reportOf(*app), QStringLiteral("“job 1” was sent to the printer again"));
    QCOMPARE(queue.orders(), QStringList(QStringLiteral("reprintPrintJobguid-000001")));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 1"));
    QVERIFY(seen(*app, QStringLiteral("job.0.state")).startsWith(QStringLiteral("Waiting")));
    QVERIFY(app->isVisible(name(2)));
}

void TestHistoryPage::reprintThatFailedIsNotSaidToBePrinted()
{
    PrintQueue queue(2);
    queue.answerReprint(PrintQueue::Reprint::Refused);
    const auto app = openPage(2);
    reprintFirst(*app);
    COMPARE_SOON(queue.orders().size(), 1);
    QCOMPARE(reportOf(*app), QStringLiteral("Asking the print queue…"));
    // No other new job is the one, also one of this name that somebody else printed, nor the job that is
    // looked at meanwhile.
    app->click(name(1));
    app->click(QStringLiteral("job.close"));
    PrintJobMetaData other = PrintQueue::job(50);
    other.appName = 2;
    queue.set(other);
    other = PrintQueue::job(51);
    other.jobName = QStringLiteral("job 1");
    other.appName = 1;
    queue.set(other);
    COMPARE_SOON(app->item(QStringLiteral("pageScroll")).property("count").toInt(), 4);
    app->item(QStringLiteral("history.page")).setProperty("patience", 20);
    COMPARE_SOON(reportOf(*app),
                 QStringLiteral("“job 1” could not be printed again. Its document may no longer be kept."));
    // Late, but printed.
    PrintJobMetaData late = PrintQueue::job(60);
    late.jobName = QStringLiteral("job 1");
    late.eventType = 3;
    queue.set(late);
    COMPARE_SOON(reportOf(*app), QStringLiteral("“job 1” was sent to the printer again"));
}

void TestHistoryPage::reprintThatIsForgottenIsNotSaidToBePrinted()
{
    PrintQueue queue(2);
    queue.answerReprint(PrintQueue::Reprint::Refused);
    const auto app = openPage(2);
    QQuickItem &page = app->item(QStringLiteral("history.page"));
    page.setProperty("patience", 20);
    page.setProperty("memory", 60);
    page.setProperty("reportTime", 60);
    reprintFirst(*app);
    VERIFY_SOON(page.property("isComplaint").toBool());
    VERIFY_SOON(page.property("expected").toString().isEmpty());
    // What was said does not hide for good how many jobs there are.
    COMPARE_SOON(reportOf(*app), QStringLiteral("2 jobs, newest first"));
    PrintJobMetaData later = PrintQueue::job(60);
    later.jobName = QStringLiteral("job 1");
    later.appName = 2;
    queue.set(later);
    COMPARE_SOON(reportOf(*app), QStringLiteral("3 jobs, newest first"));
}

void TestHistoryPage::hangingQueueIsSaidAndReadWhenItAnswers()
{
    PrintQueue queue(2);
    queue.hang();
    QElapsedTimer time;
    time.start();
    AppSession app(history);
    app.item(QStringLiteral("history.page")).setProperty("queuePatience", 50);
    QCOMPARE(seen(app, QStringLiteral("history.report")), QStringLiteral("Reading…"));
    COMPARE_SOON(seen(app, QStringLiteral("history.none")), QStringLiteral("No jobs are known"));
    QVERIFY(app.isVisible(QStringLiteral("history.trouble")));
    QCOMPARE(app.property(QStringLiteral("history.trouble"), "text").toString(),
             QStringLiteral("The print queue does not answer."));
    QVERIFY2(time.elapsed() < 5000, "The page waits for the print queue.");
    queue.goOn();
    COMPARE_SOON(reportOf(app), QStringLiteral("2 jobs, newest first"));
    QVERIFY(!app.isVisible(QStringLiteral("history.trouble")));
}

void TestHistoryPage::listThatCannotBeHadIsNotSaidToBeEmpty()
{
    PrintQueue queue(2);
    queue.failLists(true);
    AppSession app(history);
    app.item(QStringLiteral("history.page")).setProperty("retryTime", 50);
    COMPARE_SOON(seen(app, QStringLiteral("history.none")), QStringLiteral("No jobs are known"));
    QCOMPARE(app.property(QStringLiteral("history.trouble"), "text").toString(),
             QStringLiteral("The print queue cannot list its jobs."));
    // Asking again does not take that back.
    const QSignalSpy changes(&app.item(QStringLiteral("history.page")), SIGNAL(troubleChanged()));
    QTest::qWait(200);
    QCOMPARE(changes.size(), 0);
    queue.failLists(false);
    COMPARE_SOON(reportOf(app), QStringLiteral("2 jobs, newest first"));
    QVERIFY(!app.isVisible(QStringLiteral("history.trouble")));
}

void TestHistoryPage::hangingQueueIsGivenNoOrder()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    const QString refusal = QStringLiteral("The print queue does not answer; nothing was ordered");
    queue.hang();
    QElapsedTimer time;
    time.start();
    reprintFirst(*app);
    // One order at a time.
    QCOMPARE(reportOf(*app), QStringLiteral("Asking the print queue…"));
    QVERIFY(app->property(QStringLiteral("history.clear"), "resting").toBool());
    app->click(name(1));
    QCOMPARE(seen(*app, QStringLiteral("job.hindrance")), QStringLiteral("The last order is not done yet."));
    app->click(QStringLiteral("job.reprint"));
    QVERIFY(!app->isVisible(QStringLiteral("confirmation.confirm")));
    app->item(QStringLiteral("history.page")).setProperty("queuePatience", 50);
    COMPARE_SOON(seen(*app, QStringLiteral("job.hindrance")),
                 QStringLiteral("The print queue does not answer."));
    app->click(QStringLiteral("job.close"));
    QCOMPARE(reportOf(*app), refusal);
    QVERIFY(app->isVisible(QStringLiteral("history.trouble")));
    queue.goOn();
    VERIFY_SOON(!app->isVisible(QStringLiteral("history.trouble")));

    queue.hang();
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    VERIFY_SOON(app->isVisible(QStringLiteral("history.trouble")));
    QCOMPARE(reportOf(*app), refusal);
    QVERIFY2(time.elapsed() < 5000, "The page waits for the print queue.");
    queue.goOn();
    VERIFY_SOON(!app->property(QStringLiteral("history.clear"), "resting").toBool());
    QCOMPARE(queue.orders(), QStringList());
    // What was said is of no interest to one who was elsewhere.
    app->turnTo(5);
    app->turnTo(history);
    QCOMPARE(reportOf(*app), QStringLiteral("2 jobs, newest first"));
}

void TestHistoryPage::orderWithoutEffectIsNotSaidToBeDone()
{
    PrintQueue queue;
    PrintJobMetaData waiting = PrintQueue::job(1);
    waiting.jobStatus = QStringLiteral("Waiting");
    queue.set(waiting);
    queue.answerReprint(PrintQueue::Reprint::Refused);
    const auto app = openPage(1);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    COMPARE_SOON(queue.orders().size(), 1);
    app->item(QStringLiteral("history.page")).setProperty("patience", 20);
    COMPARE_SOON(reportOf(*app), QStringLiteral("Nothing was cleared. Jobs that are not finished stay."));
    QVERIFY(app->isVisible(name(0)));
    // One that was held up may still be carried out.
    queue.delayOrders(80);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    COMPARE_SOON(reportOf(*app), QStringLiteral("The print queue takes long; it may still clear"));
    reprintFirst(*app);
    COMPARE_SOON(reportOf(*app), QStringLiteral("The print queue does not answer; it may still print later"));
    waiting = PrintQueue::job(2);
    waiting.jobName = QStringLiteral("job 1");
    waiting.appName = 2;
    queue.set(waiting);
    COMPARE_SOON(reportOf(*app), QStringLiteral("“job 1” was sent to the printer again"));
}

void TestHistoryPage::slowClearIsReportedWhenItShows()
{
    PrintQueue queue(2);
    queue.delayOrders(80);
    const auto app = openPage(2);
    app->item(QStringLiteral("history.page")).setProperty("patience", 20);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    COMPARE_SOON(reportOf(*app), QStringLiteral("The history was cleared"));
}

void TestHistoryPage::jobsThatCannotBeReadAreNotSaidToBeCleared()
{
    PrintQueue queue;
    PrintJobMetaData waiting = PrintQueue::job(1);
    waiting.jobStatus = QStringLiteral("Waiting");
    queue.set(waiting);
    const auto app = openPage(1);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    COMPARE_SOON(queue.orders().size(), 1);
    waiting.copyCount = 0; // as all numbers of a record that could not be had
    queue.set(waiting);
    COMPARE_SOON(app->item(QStringLiteral("pageScroll")).property("count").toInt(), 0);
    COMPARE_SOON(seen(*app, QStringLiteral("history.none")), QStringLiteral("No jobs are known"));
    QCOMPARE(reportOf(*app), QStringLiteral("Asking the print queue…"));
    app->item(QStringLiteral("history.page")).setProperty("patience", 20);
    COMPARE_SOON(reportOf(*app), QStringLiteral("Nothing was cleared. Jobs that are not finished stay."));
}

void TestHistoryPage::jobThatComesBackIsNotSaidToBePrinted()
{
    PrintQueue queue(1);
    PrintJobMetaData again = PrintQueue::job(1);
    again.appName = 2;
    queue.set(again);
    queue.answerReprint(PrintQueue::Reprint::Refused);
    const auto app = openPage(2);
    reprintFirst(*app);
    COMPARE_SOON(queue.orders().size(), 1);
    for (const int copies : {0, 2}) {
        again.copyCount = copies;
        queue.set(again);
        COMPARE_SOON(app->item(QStringLiteral("pageScroll")).property("count").toInt(), copies == 0 ? 1 : 2);
    }
    app->item(QStringLiteral("history.page")).setProperty("patience", 20);
    COMPARE_SOON(reportOf(*app),
                 QStringLiteral("“job 1” could not be printed again. Its document may no longer be kept."));
}

void TestHistoryPage::clearAsksFirst()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.cancel"));
    QTest::qWait(60);
    QCOMPARE(queue.orders(), QStringList());
    // By keys, which then act on the same button.
    app->press(QStringLiteral("history.clear"), Qt::Key_Return);
    VERIFY_SOON(app->isVisible(QStringLiteral("confirmation.confirm")));
    QTest::keyClick(app->window(), Qt::Key_Tab);
    QTest::keyClick(app->window(), Qt::Key_Return);
    COMPARE_SOON(reportOf(*app), QStringLiteral("The history was cleared"));
    QVERIFY(app->property(QStringLiteral("history.clear"), "visualFocus").toBool());
    QCOMPARE(queue.orders(), QStringList(QStringLiteral("clearPrintJob")));
    COMPARE_SOON(seen(*app, QStringLiteral("history.none")), QStringLiteral("No print jobs"));
    QVERIFY(app->property(QStringLiteral("history.clear"), "resting").toBool());
}

void TestHistoryPage::clearLeavesUnfinishedJobs()
{
    PrintQueue queue(3);
    PrintJobMetaData waiting = PrintQueue::job(1);
    waiting.jobStatus = QStringLiteral("Waiting");
    queue.set(waiting);
    const auto app = openPage(3);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    COMPARE_SOON(reportOf(*app), QStringLiteral("The finished jobs were cleared"));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 1"));
    QVERIFY(!app->isVisible(name(1)));
}

void TestHistoryPage::absentQueueIsSaidAndWhatWasKnownStays()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    queue.vanish();
    VERIFY_SOON(app->isVisible(QStringLiteral("history.trouble")));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 1"));
    QVERIFY(app->property(QStringLiteral("history.clear"), "resting").toBool());
    app->click(name(0));
    QCOMPARE(seen(*app, QStringLiteral("job.hindrance")), QStringLiteral("The print queue is not running."));
    app->click(QStringLiteral("job.reprint"));
    QVERIFY(!app->isVisible(QStringLiteral("confirmation.confirm")));
    app->click(QStringLiteral("job.close"));

    queue.appear();
    VERIFY_SOON(!app->isVisible(QStringLiteral("history.trouble")));
    QCOMPARE(seen(*app, name(1)), QStringLiteral("job 0"));
    QVERIFY(!app->property(QStringLiteral("history.clear"), "resting").toBool());
}

void TestHistoryPage::queueThatComesLaterIsRead()
{
    PrintQueue queue(2);
    queue.vanish();
    const auto app = openPage(0);
    VERIFY_SOON(app->isVisible(QStringLiteral("history.trouble")));
    QCOMPARE(seen(*app, QStringLiteral("history.none")), QStringLiteral("No jobs are known"));
    queue.appear();
    COMPARE_SOON(reportOf(*app), QStringLiteral("2 jobs, newest first"));
    QVERIFY(!app->isVisible(QStringLiteral("history.trouble")));
}

void TestHistoryPage::keysMoveOpenAndClose()
{
    PrintQueue queue(50);
    const auto app = openPage(50);
    QQuickItem &list = app->item(QStringLiteral("pageScroll"));
    list.forceActiveFocus(Qt::TabFocusReason);
    const auto key = [&app](Qt::Key code) { QTest::keyClick(app->window(), code); };
    QCOMPARE(list.property("currentIndex").toInt(), 0);
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    QCOMPARE(list.property("currentIndex").toInt(), 2);
    QVERIFY(app->property(QStringLiteral("row.2"), "highlighted").toBool());
    // The job that keys act on stays the same, wherever it goes.
    queue.set(PrintQueue::job(70));
    COMPARE_SOON(list.property("currentIndex").toInt(), 3);
    key(Qt::Key_End);
    QCOMPARE(list.property("currentIndex").toInt(), 50);
    VERIFY_SOON(placeOf(*app, QStringLiteral("job 0")) > 0);
    key(Qt::Key_PageUp);
    QVERIFY(list.property("currentIndex").toInt() < 50);
    key(Qt::Key_Home);
    key(Qt::Key_Return);
    COMPARE_SOON(seen(*app, QStringLiteral("job.name")), QStringLiteral("job 70"));
    key(Qt::Key_Return);
    COMPARE_SOON(seen(*app, QStringLiteral("confirmation.title")), QStringLiteral("Print it again?"));
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    COMPARE_SOON(queue.orders(), QStringList(QStringLiteral("reprintPrintJobguid-000070")));
    VERIFY_SOON(!app->isVisible(QStringLiteral("job.close")));
    VERIFY_SOON(list.hasActiveFocus());
    key(Qt::Key_Space);
    VERIFY_SOON(app->isVisible(QStringLiteral("job.close")));
    key(Qt::Key_Escape);
    VERIFY_SOON(!app->isVisible(QStringLiteral("job.close")));
    // A finger needs no mark.
    app->click(name(1));
    app->click(QStringLiteral("job.close"));
    QVERIFY(!app->property(QStringLiteral("row.1"), "highlighted").toBool());
}

void TestHistoryPage::bothScreensHaveRoomForARow()
{
    PrintQueue queue(30);
    PrintJobMetaData job = PrintQueue::job(28);
    job.ribbon2SKU = QStringLiteral("RB-220");
    job.jobStatus = QStringLiteral("Failed");
    job.errorValue = 3;
    queue.set(job);
    MessageLog messages;
    const auto app = openPage(30);
    for (const QSize &size : {QSize(800, 480), QSize(1280, 800)}) {
        app->window()->resize(size);
        for (const char *part : {"", ".state", ".counts", ".supplies"})
            QVERIFY2(!app->property(QStringLiteral("job.1") + QLatin1String(part), "truncated").toBool(),
                     part);
        QVERIFY(app->rectangle(QStringLiteral("job.1.supplies")).right() < size.width());
        app->click(name(2));
        QVERIFY(app->rectangle(QStringLiteral("job.close")).right() < size.width());
        QVERIFY(app->rectangle(QStringLiteral("job.reprint")).left() > 0);
        app->click(QStringLiteral("job.close"));
    }
    QCOMPARE(messages.texts().filter(QStringLiteral("qrc:")), QStringList());
}

void TestHistoryPage::exampleOfTheModuleListsTheJobs()
{
    QFile file(QStringLiteral(ZB_SOURCE_DIRECTORY "/../../qml/README.md"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const QString example = text.section(QStringLiteral("```qml\n"), 1).section(QStringLiteral("```"), 0, 0);
    PrintQueue queue(2);
    QQmlEngine engine;
    engine.addImportPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../qml"));
    QQmlComponent component(&engine);
    component.setData(example.toUtf8(), QUrl(QStringLiteral("file:///Example.qml")));
    const std::unique_ptr<QObject> list(component.create());
    QVERIFY2(list, qPrintable(component.errorString()));
    QQuickItem *row = nullptr;
    QVERIFY(
        QMetaObject::invokeMethod(list.get(), "itemAtIndex", Q_RETURN_ARG(QQuickItem *, row), Q_ARG(int, 1)));
    QVERIFY(row);
    QCOMPARE(row->property("text").toString(), QStringLiteral("03/05/2021 00:00am job 0: Printed"));
}

QTEST_MAIN(TestHistoryPage)
#include "tst_historypage.moc"
