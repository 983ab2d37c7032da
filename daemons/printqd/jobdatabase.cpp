// Opens, checks, reads and writes the database.
#include "jobdatabase.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QUuid>

#include <fcntl.h>
#include <unistd.h>

namespace {

// What marks a file of this daemon (PRAGMA application_id): "ZBPQ".
constexpr int applicationId = 0x5a425051;
constexpr int schemaVersion = 1;

// Result codes of SQLite that say that the file is no database any more
// (https://www.sqlite.org/rescode.html).
constexpr int resultCorrupt = 11;
constexpr int resultNotADatabase = 26;

// In the order in which they are bound and read.
const char *const jobColumns[] = {
    "guid",          "revision",        "uuid",           "number",         "document",
    "original_uuid", "is_order",        "wants_document", "wants_picture",  "time_stamp",
    "job_name",      "job_status",      "app_name",       "error_value",    "copy_count",
    "series_count",  "heat1",           "heat2",          "tension1",       "tension2",
    "event_type",    "supply_sku",      "supply_color",   "supply_mileage", "ribbon1_sku",
    "ribbon1_color", "ribbon1_mileage", "ribbon2_sku",    "ribbon2_color",  "ribbon2_mileage",
    "image_path",
};

QStringList columnNames()
{
    QStringList names;
    for (const char *const name : jobColumns)
        names.append(QLatin1String(name));
    return names;
}

/// Inserts a job or changes the one with that GUID. Another job with the same UUID makes it fail.
QString putStatement()
{
    QStringList places;
    QStringList updates;
    for (const QString &name : columnNames()) {
        places.append(QStringLiteral("?"));
        updates.append(QStringLiteral("%1=excluded.%1").arg(name));
    }
    return QStringLiteral("INSERT INTO jobs (%1) VALUES (%2) ON CONFLICT(guid) DO UPDATE SET %3")
        .arg(columnNames().join(QLatin1Char(',')), places.join(QLatin1Char(',')),
             updates.join(QLatin1Char(',')));
}

QVariant textOrNull(const QString &text)
{
    return text.isEmpty() ? QVariant(QVariant::String) : QVariant(text);
}

QVariantList valuesOf(const StoredJob &job)
{
    const PrintJobMetaData &record = job.record;
    return {record.GUID,
            qlonglong(job.revision),
            textOrNull(job.uuid),
            job.number,
            textOrNull(job.document),
            textOrNull(job.originalUuid),
            job.isOrder,
            job.wantsDocument,
            job.wantsPicture,
            record.timeStamp,
            record.jobName,
            record.jobStatus,
            record.appName,
            record.errorValue,
            record.copyCount,
            record.seriesCount,
            record.heat1,
            record.heat2,
            record.tension1,
            record.tension2,
            record.eventType,
            record.supplySKU,
            record.supplyColor,
            record.supplyMileage,
            record.ribbon1SKU,
            record.ribbon1Color,
            record.ribbon1Mileage,
            record.ribbon2SKU,
            record.ribbon2Color,
            record.ribbon2Mileage,
            record.imagePath};
}

StoredJob jobOf(const QSqlQuery &row)
{
    StoredJob job;
    PrintJobMetaData &record = job.record;
    int column = 0;
    const auto text = [&row, &column](QString &value) { value = row.value(column++).toString(); };
    const auto number = [&row, &column](auto &value) {
        using Number = std::remove_reference_t<decltype(value)>;
        value = row.value(column++).value<Number>();
    };
    text(record.GUID);
    number(job.revision);
    text(job.uuid);
    number(job.number);
    text(job.document);
    text(job.originalUuid);
    number(job.isOrder);
    number(job.wantsDocument);
    number(job.wantsPicture);
    text(record.timeStamp);
    text(record.jobName);
    text(record.jobStatus);
    number(record.appName);
    number(record.errorValue);
    number(record.copyCount);
    number(record.seriesCount);
    number(record.heat1);
    number(record.heat2);
    number(record.tension1);
    number(record.tension2);
    number(record.eventType);
    text(record.supplySKU);
    text(record.supplyColor);
    number(record.supplyMileage);
    text(record.ribbon1SKU);
    text(record.ribbon1Color);
    number(record.ribbon1Mileage);
    text(record.ribbon2SKU);
    text(record.ribbon2Color);
    number(record.ribbon2Mileage);
    text(record.imagePath);
    return job;
}

/// A list as one value for json_each(), so that one statement does for all.
QString listText(const QStringList &list)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(list)).toJson(QJsonDocument::Compact));
}

/// The file for this user alone, before SQLite would make one for everybody. SQLite's further files take
/// after it.
void makePrivateFile(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file >= 0)
        ::close(file);
}

} // namespace

JobDatabase::JobDatabase(const QString &path)
    : m_path(path)
    , m_connection(QUuid::createUuid().toString())
{
}

JobDatabase::~JobDatabase()
{
    close();
}

void JobDatabase::close()
{
    m_putJob.reset();
    m_database = QSqlDatabase();
    if (QSqlDatabase::contains(m_connection))
        QSqlDatabase::removeDatabase(m_connection);
}

QString JobDatabase::open(DatabaseContent *content)
{
    QString complaint;
    Opened opened = tryToOpen(content, &complaint);
    if (opened == Opened::Damaged) {
        close();
        setAside(complaint);
        *content = {};
        opened = tryToOpen(content, &complaint);
    }
    if (opened == Opened::Yes)
        return {};
    close();
    return QStringLiteral("%1: %2").arg(m_path, complaint);
}

JobDatabase::Opened JobDatabase::tryToOpen(DatabaseContent *content, QString *complaint)
{
    makePrivateFile(m_path);
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_database.setDatabaseName(m_path);
    m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=2000"));
    if (!m_database.open())
        return outcomeOf(m_database.lastError(), complaint);
    for (const char *const pragma : {"PRAGMA locking_mode=EXCLUSIVE", "PRAGMA journal_mode=WAL",
                                     "PRAGMA synchronous=FULL", "PRAGMA cache_size=-32768"}) {
        if (!execute(QLatin1String(pragma)))
            return outcomeOf(m_error, complaint);
    }
    const Opened prepared = prepareSchema(complaint);
    if (prepared != Opened::Yes)
        return prepared;
    m_putJob = std::make_unique<QSqlQuery>(m_database);
    if (!m_putJob->prepare(putStatement())) {
        *complaint = QStringLiteral("not the tables of this daemon");
        return Opened::Damaged;
    }
    if (load(content))
        return Opened::Yes;
    *complaint = m_error.isValid() ? m_error.databaseText() : QStringLiteral("not the tables of this daemon");
    return Opened::Damaged;
}

JobDatabase::Opened JobDatabase::prepareSchema(QString *complaint)
{
    const QVariant objects = valueOf(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    if (!objects.isValid())
        return outcomeOf(m_error, complaint);
    if (objects.toInt() == 0)
        return createSchema() ? Opened::Yes : outcomeOf(m_error, complaint);

    if (valueOf(QStringLiteral("PRAGMA application_id")).toInt() != applicationId) {
        *complaint = QStringLiteral("a database of another program");
        return Opened::Damaged;
    }
    if (valueOf(QStringLiteral("PRAGMA user_version")).toInt() != schemaVersion) {
        *complaint = QStringLiteral("of another version of this daemon");
        return Opened::Damaged;
    }
    const QVariant check = valueOf(QStringLiteral("PRAGMA quick_check(1)"));
    if (!check.isValid())
        return outcomeOf(m_error, complaint);
    *complaint = check.toString().section(QLatin1Char('\n'), 0, 0);
    return check.toString() == QLatin1String("ok") ? Opened::Yes : Opened::Damaged;
}

/// Whether the file is what makes \a error, so that another one would do.
JobDatabase::Opened JobDatabase::outcomeOf(const QSqlError &error, QString *complaint) const
{
    *complaint = error.databaseText();
    // Extended codes have the plain one in their last byte.
    const int code = error.nativeErrorCode().toInt() & 0xff;
    return code == resultCorrupt || code == resultNotADatabase ? Opened::Damaged : Opened::Impossible;
}

bool JobDatabase::createSchema()
{
    const QString epoch = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const bool isDone = execute(QStringLiteral("BEGIN IMMEDIATE"))
        && execute(QStringLiteral("PRAGMA application_id=%1").arg(applicationId))
        && execute(QStringLiteral("PRAGMA user_version=%1").arg(schemaVersion))
        && execute(QStringLiteral("CREATE TABLE state (epoch TEXT NOT NULL, revision INTEGER NOT NULL,"
                                  " floor INTEGER NOT NULL)"))
        && execute(QStringLiteral("INSERT INTO state VALUES (?, 0, 0)"), {epoch})
        && execute(QStringLiteral("CREATE TABLE jobs (%1, PRIMARY KEY (guid)) WITHOUT ROWID")
                       .arg(columnNames().join(QLatin1Char(','))))
        && execute(QStringLiteral("CREATE UNIQUE INDEX jobs_by_uuid ON jobs (uuid) WHERE uuid IS NOT NULL"))
        && execute(QStringLiteral("CREATE TABLE tombstones (guid PRIMARY KEY, revision) WITHOUT ROWID"))
        && execute(QStringLiteral("CREATE TABLE forgotten (uuid PRIMARY KEY, number) WITHOUT ROWID"))
        && execute(QStringLiteral(
            "CREATE TABLE documents (name PRIMARY KEY, format, bytes, used) WITHOUT ROWID"))
        && execute(QStringLiteral("COMMIT"));
    return isDone;
}

bool JobDatabase::load(DatabaseContent *content)
{
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    const auto forEachRow = [this, &query](const QString &statement, const auto &take) {
        if (!query.exec(statement)) {
            m_error = query.lastError();
            return false;
        }
        while (query.next())
            take();
        m_error = query.lastError();
        return !m_error.isValid();
    };
    bool hasState = false;
    const bool isRead =
        forEachRow(QStringLiteral("SELECT epoch, revision, floor FROM state"),
                   [&] {
                       hasState = true;
                       content->epoch = query.value(0).toString();
                       content->revision = query.value(1).toULongLong();
                       content->floor = query.value(2).toULongLong();
                   })
        && forEachRow(QStringLiteral("SELECT %1 FROM jobs").arg(columnNames().join(QLatin1Char(','))),
                      [&] { content->jobs.append(jobOf(query)); })
        && forEachRow(
            QStringLiteral("SELECT guid, revision FROM tombstones"),
            [&] {
                content->tombstones.append({query.value(0).toString(), query.value(1).toULongLong()});
            })
        && forEachRow(QStringLiteral("SELECT uuid, number FROM forgotten"),
                      [&] {
                          content->forgotten.append({query.value(0).toString(), query.value(1).toInt()});
                      })
        && forEachRow(QStringLiteral("SELECT name, format, bytes, used FROM documents"), [&] {
               content->documents.append({query.value(0).toString(), query.value(1).toString(),
                                          query.value(2).toLongLong(), query.value(3).toLongLong()});
           });
    return isRead && hasState && !content->epoch.isEmpty();
}

bool JobDatabase::execute(const QString &statement)
{
    QSqlQuery query(m_database);
    if (query.exec(statement))
        return true;
    m_error = query.lastError();
    return false;
}

bool JobDatabase::execute(const QString &statement, const QVariantList &values)
{
    QSqlQuery query(m_database);
    bool isDone = query.prepare(statement);
    if (isDone) {
        for (const QVariant &value : values)
            query.addBindValue(value);
        isDone = query.exec();
    }
    if (!isDone)
        m_error = query.lastError();
    return isDone;
}

/// The first value of the first row; none where there is an error.
QVariant JobDatabase::valueOf(const QString &statement)
{
    QSqlQuery query(m_database);
    if (query.exec(statement) && query.next())
        return query.value(0);
    m_error = query.lastError();
    return {};
}

QString JobDatabase::write(const DatabaseChange &change)
{
    if (execute(QStringLiteral("BEGIN IMMEDIATE")) && writeRows(change) && execute(QStringLiteral("COMMIT")))
        return {};
    const QString reason = QStringLiteral("%1: %2").arg(m_path, m_error.databaseText());
    // SQLite has done it already after some errors.
    execute(QStringLiteral("ROLLBACK"));
    return reason;
}

bool JobDatabase::writeRows(const DatabaseChange &change)
{
    for (const ForgottenJob &job : change.forgotten) {
        if (!execute(QStringLiteral("INSERT OR IGNORE INTO forgotten VALUES (?, ?)"), {job.uuid, job.number}))
            return false;
    }
    for (const KeptDocument &document : change.documentsPut) {
        if (!execute(QStringLiteral("INSERT OR REPLACE INTO documents VALUES (?, ?, ?, ?)"),
                     {document.name, document.format, document.bytes, document.used}))
            return false;
    }
    const auto removeAll = [this](const QString &statement, const QStringList &list) {
        return list.isEmpty() || execute(statement, {listText(list)});
    };
    // What is removed goes first: it may free the UUID of what is put.
    return remove(change) && writeJobs(change.put)
        && removeAll(QStringLiteral("DELETE FROM tombstones WHERE guid IN (SELECT value FROM json_each(?))"),
                     change.revived)
        && removeAll(QStringLiteral("DELETE FROM forgotten WHERE uuid IN (SELECT value FROM json_each(?))"),
                     change.forgettingDone)
        && removeAll(QStringLiteral("DELETE FROM documents WHERE name IN (SELECT value FROM json_each(?))"),
                     change.documentsRemoved)
        && (!change.raisesFloor
            || execute(QStringLiteral("DELETE FROM tombstones WHERE revision <= ?"),
                       {qlonglong(change.floor)}))
        && execute(QStringLiteral("UPDATE state SET revision = ?, floor = ?"),
                   {qlonglong(change.revision), qlonglong(change.floor)});
}

bool JobDatabase::remove(const DatabaseChange &change)
{
    if (change.removed.isEmpty())
        return true;
    const QString list = listText(change.removed);
    return execute(QStringLiteral("INSERT OR IGNORE INTO forgotten SELECT uuid, number FROM jobs"
                                  " WHERE uuid IS NOT NULL AND guid IN (SELECT value FROM json_each(?))"),
                   {list})
        && execute(QStringLiteral("DELETE FROM jobs WHERE guid IN (SELECT value FROM json_each(?))"), {list})
        && (change.floor == change.revision
            || execute(QStringLiteral("INSERT OR REPLACE INTO tombstones SELECT value, ? FROM json_each(?)"),
                       {qlonglong(change.revision), list}));
}

bool JobDatabase::writeJobs(const QVector<StoredJob> &jobs)
{
    for (const StoredJob &job : jobs) {
        int place = 0;
        for (const QVariant &value : valuesOf(job))
            m_putJob->bindValue(place++, value);
        if (!m_putJob->exec()) {
            m_error = m_putJob->lastError();
            return false;
        }
    }
    return true;
}

// A device that damages the file at every power cut must not fill its disk with them.
constexpr int mostSetAside = 5;

void JobDatabase::setAside(const QString &complaint) const
{
    int number = 1;
    const auto freePath = [this, &number] { return m_path + QStringLiteral(".damaged-%1").arg(number); };
    while (QFileInfo::exists(freePath()) && number < mostSetAside)
        ++number;
    const QString log = QStringLiteral("-wal");
    QFile::remove(freePath());
    QFile::remove(freePath() + log);
    QFile::rename(m_path + log, freePath() + log);
    QFile::remove(m_path + QStringLiteral("-shm"));
    const QString place = QFile::rename(m_path, freePath()) ? QStringLiteral("set aside as ") + freePath()
                                                            : QStringLiteral("could not be set aside");
    qWarning().noquote() << "job store" << m_path << "is not usable," << complaint + QStringLiteral(";")
                         << place << "and a new one begins";
}
