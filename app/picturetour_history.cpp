// The stations of the tour that are about jobs: documents that somebody prints appear on the history page,
// one is printed again, the print queue daemon is killed, and the history is cleared. What the page shows is
// compared with what the daemon says.
#include "picturetour.h"

#include "printqueuecontrol.h"
#include "waiting.h"

#include <zbsettingsqmlenums.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtQuick/QQuickItem>

#include <algorithm>

namespace {

constexpr int printMilliseconds = 20000;
constexpr int daemonMilliseconds = 10000;

struct Document
{
    QString title;
    QString file;
};

QString rowName(int row)
{
    return QStringLiteral("job.%1").arg(row);
}

QString fromPage(const char *text)
{
    return QCoreApplication::translate("HistoryPage", text);
}

QString quoted(const QStringList &names)
{
    return QLatin1Char('\'') + names.join(QStringLiteral("', '")) + QLatin1Char('\'');
}

} // namespace

void PictureTour::demonstrateHistory()
{
    const PrintQueueControl queue;
    if (qEnvironmentVariableIsEmpty("ZBVIRTUALDEVICE_PRINTED") || !queue.isThere())
        return skip(QStringLiteral("the print history, which needs a whole virtual device"));
    turnTo(ZBSettingsTabNames::PRINTER_HISTORY);
    if (printDocuments()) {
        reprintDocument();
        killPrintQueue();
    }
    clearHistory();
}

QStringList PictureTour::shownJobs(int count) const
{
    QStringList names;
    for (int row = 0; row < count; ++row)
        names += m_driver.visibleText(rowName(row));
    return names;
}

bool PictureTour::showsPicture(const QString &item) const
{
    const QQuickItem *const picture = m_driver.visibleItem(item);
    return picture && picture->property("isShown").toBool();
}

bool PictureTour::printDocuments()
{
    const PrintQueueControl queue;
    const QString notes = m_directory.filePath(QStringLiteral("notes.txt"));
    QFile text(notes);
    const bool isWritten = text.open(QIODevice::WriteOnly) && text.write("Feed the cutter.\n") > 0;
    text.close();
    // The test page is a PDF document.
    const QVector<Document> documents = {
        {QStringLiteral("Shoe box"),
         QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_4x4.tavo")},
        {QStringLiteral("Screen"), m_directory.filePath(QStringLiteral("general.png"))},
        {QStringLiteral("Notes"), notes}};
    const auto isFinished = [&queue] {
        const QVector<PrintQueueControl::Job> jobs = queue.jobs();
        return std::all_of(jobs.begin(), jobs.end(), [](const PrintQueueControl::Job &job) {
            return job.status == QLatin1String("Printed");
        });
    };
    for (const Document &document : documents) {
        QProcess::execute(QStringLiteral("lp"),
                          {QStringLiteral("-s"), QStringLiteral("-d"), QStringLiteral("BrackenXL"),
                           QStringLiteral("-t"), document.title, document.file});
        waitUntil([&] { return shownJobs(1).contains(document.title) && isFinished(); }, printMilliseconds);
    }
    QFile::remove(notes);

    const QStringList shown = shownJobs(3);
    const QStringList known = queue.names().mid(0, 3);
    const bool isShown = isWritten && shown == known
        && shown
            == QStringList({QStringLiteral("Notes"), QStringLiteral("Screen"), QStringLiteral("Shoe box")});
    report(isShown,
           QStringLiteral("three documents were printed with lp, the page shows %1, the print queue has %2")
               .arg(quoted(shown), quoted(known)));
    report(waitUntil([this] { return showsPicture(QStringLiteral("job.2.picture")); }, printMilliseconds),
           QStringLiteral("the page shows the picture of the PDF document"));
    writePicture(QStringLiteral("history-three"));
    return isShown;
}

void PictureTour::reprintDocument()
{
    const PrintQueueControl queue;
    const int before = queue.jobs().size();
    click(rowName(2));
    waitUntil([this] { return showsPicture(QStringLiteral("job.picture")); }, printMilliseconds);
    writePicture(QStringLiteral("history-details"));
    click(QStringLiteral("job.reprint"));
    writePicture(QStringLiteral("history-reprint-confirmation"));
    click(QStringLiteral("confirmation.confirm"));
    const QString expected = fromPage("%1 was sent to the printer again").arg(QStringLiteral("“Shoe box”"));
    const auto says = [this] { return m_driver.visibleText(QStringLiteral("history.report")); };
    const auto isPrinted = [&] {
        const QVector<PrintQueueControl::Job> jobs = queue.jobs();
        return jobs.size() == before + 1 && jobs.first().status == QLatin1String("Printed")
            && says() == expected;
    };
    waitUntil(isPrinted, printMilliseconds);
    report(isPrinted() && shownJobs(1) == queue.names().mid(0, 1),
           QStringLiteral("one was printed again, the page says '%1', the newest job is '%2'")
               .arg(says(), queue.names().value(0)));
    writePicture(QStringLiteral("history-reprinted"));
}

void PictureTour::killPrintQueue()
{
    const PrintQueueControl queue;
    const QStringList guids = queue.guids();
    const int rows = 3;
    const QStringList shown = shownJobs(rows);
    const auto isSaidToBeGone = [this] {
        return m_driver.visibleItem(QStringLiteral("history.trouble")) != nullptr;
    };
    const bool isKilled = queue.kill() && waitUntil(isSaidToBeGone, daemonMilliseconds);
    report(isKilled && shownJobs(rows) == shown,
           QStringLiteral("the print queue daemon was killed, the page says that it is gone and shows %1")
               .arg(quoted(shownJobs(rows))));
    writePicture(QStringLiteral("history-queue-gone"));

    const bool isBack = PrintQueueControl::startAgain()
        && waitUntil([&] { return queue.isThere() && !isSaidToBeGone(); }, daemonMilliseconds);
    const QStringList after = queue.guids();
    report(isBack && !guids.isEmpty() && after == guids && shownJobs(rows) == shown,
           QStringLiteral("it was started again: of %1 jobs it has %2, the page shows %3")
               .arg(QString::number(guids.size()), QString::number(after.size()), quoted(shownJobs(rows))));
    writePicture(QStringLiteral("history-queue-back"));
}

void PictureTour::clearHistory()
{
    const PrintQueueControl queue;
    const int before = queue.jobs().size();
    click(QStringLiteral("history.clear"));
    writePicture(QStringLiteral("history-clear-confirmation"));
    click(QStringLiteral("confirmation.confirm"));
    const auto says = [this] { return m_driver.visibleText(QStringLiteral("history.none")); };
    waitUntil([&] { return !says().isEmpty(); }, daemonMilliseconds);
    report(before > 0 && !says().isEmpty() && queue.jobs().isEmpty(),
           QStringLiteral("the history of %1 jobs was cleared, the page says '%2', the print queue has %3")
               .arg(QString::number(before), says(), QString::number(queue.jobs().size())));
    writePicture(QStringLiteral("history-cleared"));
}
