// Takes everything from short lists, by the number of the job.
#include "believablejobs.h"

#include "folderopening.h"
#include "syncedfile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <array>

namespace {

template <typename Type, size_t size> const Type &pick(const std::array<Type, size> &list, quint32 number)
{
    return list[number % size];
}

struct Supply
{
    const char *sku;
    const char *color;
};

const std::array<const char *, 11> names{"Pallet label",  "Shelf price",  "Ship to %1",   "Lot %1",
                                         "Asset tag %1",  "Caution: hot", "Return %1",    "Best before",
                                         "Sample no. %1", "Pipe marker",  "Floor sign %1"};
const std::array<Supply, 4> media{
    {{"M-100-WH", "White"}, {"M-100-YE", "Yellow"}, {"M-220-CL", "Clear"}, {"M-220-WH", "White"}}};
const std::array<Supply, 5> ribbons{{{"R-50-BK", "Black"},
                                     {"R-50-RD", "Red"},
                                     {"R-50-BL", "Blue"},
                                     {"R-50-GR", "Green"},
                                     {"R-50-WH", "White"}}};

/// Spreads the bits of \a number, so that neighbours look unlike.
quint32 mixed(quint32 number)
{
    number ^= number >> 16;
    number *= 0x7feb352dU;
    number ^= number >> 15;
    number *= 0x846ca68bU;
    return number ^ (number >> 16);
}

void putOutcome(quint32 chance, PrintJobMetaData *record)
{
    record->jobStatus = QStringLiteral("Printed");
    if (chance % 40 == 0) {
        record->jobStatus = QStringLiteral("Cancelled");
        record->errorValue = int(JobError::Cancelled);
    } else if (chance % 40 == 1) {
        record->jobStatus = QStringLiteral("Failed");
        record->errorValue = int(JobError::Failed);
    } else if (chance % 200 == 2) {
        record->jobStatus = QStringLiteral("Held");
    }
}

void putSupplies(quint32 chance, PrintJobMetaData *record)
{
    const Supply &supply = pick(media, chance);
    const Supply &first = pick(ribbons, chance / 4);
    record->supplySKU = QLatin1String(supply.sku);
    record->supplyColor = QLatin1String(supply.color);
    record->supplyMileage = chance % 5000 / 10.0;
    record->ribbon1SKU = QLatin1String(first.sku);
    record->ribbon1Color = QLatin1String(first.color);
    record->ribbon1Mileage = chance % 3000 / 10.0;
    if (chance % 3 != 0)
        return;
    const Supply &second = pick(ribbons, chance / 4 + 1);
    record->ribbon2SKU = QLatin1String(second.sku);
    record->ribbon2Color = QLatin1String(second.color);
    record->ribbon2Mileage = chance % 2000 / 10.0;
    record->heat2 = 10 + int(chance % 11);
    record->tension2 = int(chance % 5);
}

StoredJob believableJob(quint32 number, qint64 time)
{
    const quint32 chance = mixed(number + 1);
    StoredJob job;
    PrintJobMetaData &record = job.record;
    record.timeStamp = QString::number(time);
    const QString name = QLatin1String(pick(names, chance));
    record.jobName = name.contains(QLatin1String("%1")) ? name.arg(1000 + number) : name;
    record.jobName += chance % 2 == 0 ? QStringLiteral(".tavo") : QStringLiteral(".zbzl");
    record.appName = int(JobSource::SchedulerClient);
    record.copyCount = 1 + int(chance % 7);
    record.seriesCount = 1;
    record.heat1 = 10 + int(chance % 13);
    record.tension1 = int(chance % 4);
    record.eventType = int(JobEvent::StateChanged);
    putOutcome(chance, &record);
    putSupplies(chance, &record);
    return job;
}

/// One page of 4 by 6 inches with a frame, as the tables of a PDF file want it: with the place of each
/// object.
QByteArray labelDocument()
{
    const QByteArray content = "4 w 18 18 252 396 re S 36 300 216 90 re f\n";
    const std::array<QByteArray, 4> objects{
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 288 432] /Contents 4 0 R /Resources << >> >>",
        "<< /Length " + QByteArray::number(content.size()) + " >>\nstream\n" + content + "endstream",
    };
    QByteArray text = "%PDF-1.4\n";
    QByteArray places;
    for (size_t index = 0; index < objects.size(); ++index) {
        places += QByteArray::number(text.size()).rightJustified(10, '0') + " 00000 n \n";
        text += QByteArray::number(int(index) + 1) + " 0 obj\n" + objects[index] + "\nendobj\n";
    }
    const QByteArray end = QByteArray::number(text.size());
    return text + "xref\n0 5\n0000000000 65535 f \n" + places
        + "trailer\n<< /Size 5 /Root 1 0 R >>\nstartxref\n" + end + "\n%%EOF\n";
}

} // namespace

QVector<StoredJob> believableJobs(int count, int first, qint64 before)
{
    QVector<StoredJob> jobs;
    jobs.reserve(count);
    qint64 time = before;
    for (int index = 0; index < count; ++index) {
        const auto number = quint32(first + index);
        // Between a minute and about three hours.
        time -= 60000 + qint64(mixed(number * 2 + 1) % 10000000);
        jobs.append(believableJob(number, time));
    }
    return jobs;
}

QString writeBelievableDocument(const QString &path, qint64 *bytes)
{
    const QByteArray text = labelDocument();
    *bytes = text.size();
    const QFileInfo information(path);
    const FileDescriptor folder = openFolder(QFile::encodeName(information.path()), MissingFolders::Fail);
    int error = folder.error();
    if (error == 0)
        error = writeSyncedFile(folder.get(), QFile::encodeName(information.fileName()), text, 0600);
    if (error == 0)
        error = syncFolder(folder.get());
    return error == 0 ? QString() : QStringLiteral("%1: %2").arg(path, qt_error_string(error));
}
