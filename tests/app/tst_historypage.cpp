// The page Print history: what it shows of the jobs, that it keeps its place, and what it says of what it
// asked for.
#include "appsession.h"
#include "messagelog.h"
#include "printqueue.h"
#include "settingsfile.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QtTest>

class TestHistoryPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SettingsFile::removeAll(); }

    void jobsAppearByThemselvesNewestFirst();
    void rowShowsWhatIsKnownOfItsJob();
    void statusIsAWordAndASign();
    void oddTextsAreOnePlainLine();
    void pictureIsShownWhereItCanBeRead_data();
    void pictureIsShownWhereItCanBeRead();
    void detailsHoldAllValuesAndFollowTheJob();
    void placeIsKeptWhileJobsComeAndChange();
    void newJobIsSeenAtTheTop();
    void thousandJobsScrollWithFewRows();
    void reprintAsksFirst_data();
    void reprintAsksFirst();
    void reprintedJobAppearsAndIsSaid();
    void reprintThatFailedIsNotSaidToBePrinted();
    void clearAsksFirst();
    void clearLeavesUnfinishedJobs();
    void clearOfUnfinishedJobsIsNotSaidToBeDone();
    void absentQueueIsSaidAndWhatWasKnownStays();
    void queueThatComesLaterIsRead();
    void keysMoveOpenAndClose();
    void bothScreensHaveRoomForARow_data();
    void bothScreensHaveRoomForARow();
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
    const auto isRead = [&] {
        return app->item(QStringLiteral("pageScroll")).property("count").toInt() == jobs
            && seen(*app, QStringLiteral("history.report")) != QStringLiteral("Reading…");
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
    QCOMPARE(seen(*app, QStringLiteral("history.none")), QStringLiteral("No print jobs"));
    for (const int minute : {5, 7, 6})
        queue.set(PrintQueue::job(minute));
    QTRY_COMPARE(reportOf(*app), QStringLiteral("3 jobs, newest first"));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 7"));
    QCOMPARE(seen(*app, name(1)), QStringLiteral("job 6"));
    QCOMPARE(seen(*app, name(2)), QStringLiteral("job 5"));
    QVERIFY(!app->isVisible(QStringLiteral("history.none")));
    QVERIFY(!app->isVisible(QStringLiteral("history.absent")));
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
    QCOMPARE(seen(*app, QStringLiteral("job.0.supplies")),
             QStringLiteral("Media BM-4000, White, 812.5 · Ribbon 1 RB-110, Black, 40.0"));
    PrintJobMetaData bare;
    bare.GUID = PrintQueue::job(0).GUID;
    bare.copyCount = 1;
    queue.set(bare);
    QTRY_COMPARE(seen(*app, name(0)), QStringLiteral("Unnamed document"));
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
                {"Failed", 3, "Failed · 03/05/2021 00:00am · Lost by the print system", "warning"},
                {"Sleeping", 17, "Sleeping · 03/05/2021 00:00am · Error 17", "information"},
                {"toString", 0, "toString · 03/05/2021 00:00am", "information"}};
    PrintQueue queue(1);
    const auto app = openPage(1);
    for (const auto &row : rows) {
        PrintJobMetaData job = PrintQueue::job(0);
        job.jobStatus = QString::fromLatin1(row.status);
        job.errorValue = row.error;
        queue.set(job);
        QTRY_COMPARE(seen(*app, QStringLiteral("job.0.state")), QString::fromUtf8(row.text));
        QCOMPARE(app->property(QStringLiteral("job.0.icon"), "name").toString(),
                 QString::fromLatin1(row.icon));
    }
}

void TestHistoryPage::oddTextsAreOnePlainLine()
{
    PrintQueue queue;
    PrintJobMetaData job = PrintQueue::job(0);
    job.jobName = QStringLiteral("<b>two</b>\nlines %1 ") + QString(5000, QLatin1Char('W'));
    job.supplySKU = QStringLiteral("S\u2028K\tU");
    queue.set(job);
    const auto app = openPage(1);
    QCOMPARE(seen(*app, name(0)).left(22), QStringLiteral("<b>two</b> lines %1 WW"));
    QVERIFY(seen(*app, name(0)).size() <= 200);
    QVERIFY(app->property(name(0), "truncated").toBool());
    QVERIFY(
        seen(*app, QStringLiteral("job.0.supplies")).startsWith(QStringLiteral("Media S K U, White, 812.5")));
    app->click(name(0));
    app->click(QStringLiteral("job.reprint"));
    QCOMPARE(seen(*app, QStringLiteral("confirmation.text")).left(23),
             QStringLiteral("“<b>two</b> lines %1 WW"));
}

void TestHistoryPage::pictureIsShownWhereItCanBeRead_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("plain") << QStringLiteral("picture.png") << true;
    QTest::newRow("signs of addresses") << QStringLiteral("50% of #1?.png") << true;
    QTest::newRow("missing") << QStringLiteral("missing.png") << false;
    QTest::newRow("none") << QString() << false;
}

void TestHistoryPage::pictureIsShownWhereItCanBeRead()
{
    QFETCH(QString, fileName);
    QFETCH(bool, isShown);
    const QTemporaryDir folder;
    PrintQueue queue;
    PrintJobMetaData job = PrintQueue::job(0);
    job.imagePath = fileName.isEmpty() ? fileName : folder.filePath(fileName);
    if (isShown) {
        QImage picture(400, 200, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(job.imagePath));
    }
    MessageLog messages;
    queue.set(job);
    const auto app = openPage(1);
    if (isShown)
        QTRY_VERIFY(app->property(QStringLiteral("job.0.picture"), "isShown").toBool());
    else if (!fileName.isEmpty())
        QTRY_COMPARE(messages.texts().filter(QStringLiteral("Cannot open")).size(), 1);
    QCOMPARE(app->property(QStringLiteral("job.0.picture"), "isShown").toBool(), isShown);
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
    QCOMPARE(shown("media"), QStringLiteral("BM-4000, White, 812.5"));
    QCOMPARE(shown("ribbon1"), QStringLiteral("RB-110, Black, 40.0"));
    QCOMPARE(shown("ribbon2"), QStringLiteral("Not known"));

    PrintJobMetaData changed = PrintQueue::job(1);
    changed.jobStatus = QStringLiteral("Failed");
    changed.errorValue = 1;
    queue.set(changed);
    QTRY_COMPARE(shown("state"), QStringLiteral("Failed"));
    QCOMPARE(shown("error"), QStringLiteral("Failed"));
    queue.remove(changed.GUID);
    QTRY_VERIFY(!app->isVisible(QStringLiteral("job.close")));
}

void TestHistoryPage::placeIsKeptWhileJobsComeAndChange()
{
    PrintQueue queue(1000);
    const auto app = openPage(1000);
    app->item(QStringLiteral("pageScroll")).setProperty("contentY", 40000);
    const QString inView = QStringLiteral("job 627");
    const double place = placeOf(*app, inView);
    QVERIFY(place > 0);

    PrintJobMetaData changed = PrintQueue::job(627);
    changed.jobStatus = QStringLiteral("Failed");
    queue.set(changed);
    QTRY_VERIFY(seen(*app, QStringLiteral("job.372.state")).startsWith(QStringLiteral("Failed")));
    QCOMPARE(placeOf(*app, inView), place);

    for (const int minute : {2000, 2001, 2002})
        queue.set(PrintQueue::job(minute));
    QTRY_COMPARE(reportOf(*app), QStringLiteral("1003 jobs, newest first"));
    QCOMPARE(placeOf(*app, inView), place);
    queue.remove(PrintQueue::job(990).GUID);
    QTRY_COMPARE(reportOf(*app), QStringLiteral("1002 jobs, newest first"));
    QCOMPARE(placeOf(*app, inView), place);
    // And the new ones are above the others.
    app->item(QStringLiteral("pageScroll")).forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(app->window(), Qt::Key_Home);
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 2002"));
    QVERIFY(placeOf(*app, QStringLiteral("job 2002")) > 0);
}

void TestHistoryPage::newJobIsSeenAtTheTop()
{
    PrintQueue queue(20);
    const auto app = openPage(20);
    const double top = placeOf(*app, QStringLiteral("job 19"));
    queue.set(PrintQueue::job(30));
    QTRY_COMPARE(placeOf(*app, QStringLiteral("job 30")), top);
    QVERIFY(placeOf(*app, QStringLiteral("job 19")) > top);
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

void TestHistoryPage::reprintAsksFirst_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("cancelled") << QStringLiteral("confirmation.cancel");
    QTest::newRow("page left") << QStringLiteral("tab.9");
}

void TestHistoryPage::reprintAsksFirst()
{
    QFETCH(QString, button);
    PrintQueue queue(2);
    const auto app = openPage(2);
    app->click(name(1));
    app->click(QStringLiteral("job.reprint"));
    QCOMPARE(seen(*app, QStringLiteral("confirmation.text")),
             QStringLiteral("“job 0” is sent to the printer as a new job."));
    if (button.startsWith(QStringLiteral("tab")))
        QMetaObject::invokeMethod(app->window(), "showTab", Q_ARG(QVariant, 9));
    else
        app->click(button);
    QTest::qWait(60);
    QCOMPARE(queue.orders(), QStringList());
    QVERIFY(!app->isVisible(QStringLiteral("confirmation.confirm")));
}

void TestHistoryPage::reprintedJobAppearsAndIsSaid()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    reprintFirst(*app);
    QTRY_COMPARE(reportOf(*app), QStringLiteral("“job 1” was sent to the printer again"));
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
    app->item(QStringLiteral("history.page")).setProperty("patience", 200);
    reprintFirst(*app);
    QTRY_COMPARE(queue.orders().size(), 1);
    QCOMPARE(reportOf(*app), QStringLiteral("Asking the print queue…"));
    // Neither another new job is the one, nor the job that is looked at meanwhile.
    app->click(name(1));
    app->click(QStringLiteral("job.close"));
    queue.set(PrintQueue::job(50));
    QTRY_COMPARE(reportOf(*app),
                 QStringLiteral("“job 1” could not be printed again. Its document may no longer be kept."));
    // Late, but printed.
    PrintJobMetaData late = PrintQueue::job(60);
    late.jobName = QStringLiteral("job 1");
    queue.set(late);
    QTRY_COMPARE(reportOf(*app), QStringLiteral("“job 1” was sent to the printer again"));
}

void TestHistoryPage::clearAsksFirst()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.cancel"));
    QTest::qWait(60);
    QCOMPARE(queue.orders(), QStringList());
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    QTRY_COMPARE(reportOf(*app), QStringLiteral("The history was cleared"));
    QCOMPARE(queue.orders(), QStringList(QStringLiteral("clearPrintJob")));
    QCOMPARE(seen(*app, QStringLiteral("history.none")), QStringLiteral("No print jobs"));
    QVERIFY(!app->property(QStringLiteral("history.clear"), "enabled").toBool());
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
    QTRY_COMPARE(reportOf(*app), QStringLiteral("The finished jobs were cleared"));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 1"));
    QVERIFY(!app->isVisible(name(1)));
}

void TestHistoryPage::clearOfUnfinishedJobsIsNotSaidToBeDone()
{
    PrintQueue queue;
    PrintJobMetaData waiting = PrintQueue::job(1);
    waiting.jobStatus = QStringLiteral("Waiting");
    queue.set(waiting);
    const auto app = openPage(1);
    app->item(QStringLiteral("history.page")).setProperty("patience", 100);
    app->click(QStringLiteral("history.clear"));
    app->click(QStringLiteral("confirmation.confirm"));
    QTRY_COMPARE(reportOf(*app), QStringLiteral("Nothing was cleared. Jobs that are not finished stay."));
    QVERIFY(app->isVisible(name(0)));
}

void TestHistoryPage::absentQueueIsSaidAndWhatWasKnownStays()
{
    PrintQueue queue(2);
    const auto app = openPage(2);
    queue.vanish();
    QTRY_VERIFY(app->isVisible(QStringLiteral("history.absent")));
    QCOMPARE(seen(*app, name(0)), QStringLiteral("job 1"));
    QVERIFY(!app->property(QStringLiteral("history.clear"), "enabled").toBool());
    app->click(name(0));
    app->click(QStringLiteral("job.reprint"));
    QVERIFY(!app->isVisible(QStringLiteral("confirmation.confirm")));
    app->click(QStringLiteral("job.close"));

    queue.appear();
    QTRY_VERIFY(!app->isVisible(QStringLiteral("history.absent")));
    QCOMPARE(seen(*app, name(1)), QStringLiteral("job 0"));
    QVERIFY(app->property(QStringLiteral("history.clear"), "enabled").toBool());
}

void TestHistoryPage::queueThatComesLaterIsRead()
{
    PrintQueue queue(2);
    queue.vanish();
    const auto app = openPage(0);
    QTRY_VERIFY(app->isVisible(QStringLiteral("history.absent")));
    QCOMPARE(seen(*app, QStringLiteral("history.none")), QStringLiteral("No jobs are known"));
    queue.appear();
    QTRY_COMPARE(reportOf(*app), QStringLiteral("2 jobs, newest first"));
    QVERIFY(!app->isVisible(QStringLiteral("history.absent")));
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
    QTRY_COMPARE(list.property("currentIndex").toInt(), 3);
    key(Qt::Key_End);
    QCOMPARE(list.property("currentIndex").toInt(), 50);
    QTRY_VERIFY(placeOf(*app, QStringLiteral("job 0")) > 0);
    key(Qt::Key_PageUp);
    QVERIFY(list.property("currentIndex").toInt() < 50);
    key(Qt::Key_Home);
    key(Qt::Key_Return);
    QTRY_COMPARE(seen(*app, QStringLiteral("job.name")), QStringLiteral("job 70"));
    key(Qt::Key_Return);
    QTRY_COMPARE(seen(*app, QStringLiteral("confirmation.title")), QStringLiteral("Print it again?"));
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    QTRY_COMPARE(queue.orders(), QStringList(QStringLiteral("reprintPrintJobguid-000070")));
    QTRY_VERIFY(!app->isVisible(QStringLiteral("job.close")));
    QTRY_VERIFY(list.hasActiveFocus());
    key(Qt::Key_Space);
    QTRY_VERIFY(app->isVisible(QStringLiteral("job.close")));
    key(Qt::Key_Escape);
    QTRY_VERIFY(!app->isVisible(QStringLiteral("job.close")));
    // A finger needs no mark.
    app->click(name(1));
    app->click(QStringLiteral("job.close"));
    QVERIFY(!app->property(QStringLiteral("row.1"), "highlighted").toBool());
}

void TestHistoryPage::bothScreensHaveRoomForARow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("small") << QSize(800, 480);
    QTest::newRow("large") << QSize(1280, 800);
}

void TestHistoryPage::bothScreensHaveRoomForARow()
{
    QFETCH(QSize, size);
    PrintQueue queue(30);
    MessageLog messages;
    const auto app = openPage(30);
    app->window()->resize(size);
    for (const char *part : {"", ".state", ".counts"})
        QVERIFY2(!app->property(QStringLiteral("job.1") + QLatin1String(part), "truncated").toBool(), part);
    const QRectF row = app->rectangle(QStringLiteral("job.1.supplies"));
    QVERIFY(row.right() < size.width());
    app->click(name(2));
    QVERIFY(app->rectangle(QStringLiteral("job.close")).right() < size.width());
    QVERIFY(app->rectangle(QStringLiteral("job.reprint")).left() > 0);
    QCOMPARE(messages.texts().filter(QStringLiteral("qrc:")), QStringList());
}

QTEST_MAIN(TestHistoryPage)
#include "tst_historypage.moc"
