// Opens, checks, reads and writes the database.
#include "jobdatabase.h"

#include "filedescriptor.h"
#include "setaside.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QUuid>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What marks a file of this daemon (PRAGMA application_id): "ZBPQ".
constexpr int applicationId = 0x5a425051;
constexpr int schemaVersion = 1;

// Result codes of SQLite (https://www.sqlite.org/rescode.html): the statement does not fit the tables; the
// file is no database any more.
constexpr int resultError = 1;
constexpr int resultCorrupt = 11;
constexpr int resultNotADatabase = 26;

// In the order in which they are bound and read.
const char *const jobColumns[] = {
    "guid",           "revision",      "arrival",         "uuid",
    "number",         "document",      "original_uuid",   "order_token",
    "wants_document", "wants_picture", "time_stamp",      "job_name",
    "job_status",     "app_name",      "error_value",     "copy_count",
    "series_count",   "heat1",         "heat2",           "tension1",
    "tension2",       "event_type",    "supply_sku",      "supply_color",
    "supply_mileage", "ribbon1_sku",   "ribbon1_color",   "ribbon1_mileage",
    "ribbon2_sku",    "ribbon2_color", "ribbon2_mileage", "image_path",
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
            qlonglong(job.arrival),
            textOrNull(job.uuid),
            job.number,
            textOrNull(job.document),
            textOrNull(job.originalUuid),
            textOrNull(job.orderToken),
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
    number(job.arrival);
    text(job.uuid);
    number(job.number);
    text(job.document);
    text(job.originalUuid);
    text(job.orderToken);
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

/// Extended codes have the plain one in their last byte.
int codeOf(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & 0xff;
}

/// A list as one value for json_each(), so that one statement does for all.
QString listText(const QStringList &list)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(list)).toJson(QJsonDocument::Compact));
}

/// The file for this user alone, before SQLite would make one for everybody. SQLite's further files take
/// after it. Returns an empty text, or why there is none: what has its name may be something else, on which
/// SQLite would wait.
QString makePrivateFile(const QString &path)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(),
                                     O_RDWR | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, 0600));
    struct stat status = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
        return qt_error_string(errno);
    return S_ISREG(status.st_mode) ? QString() : QStringLiteral("no regular file");
}

/// Reads the file to its end. Returns an empty text, also where there is none, or why that is not possible.
QString whyUnreadable(const QString &path)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file.get() < 0)
        return errno == ENOENT ? QString() : qt_error_string(errno);
    std::array<char, 65536> bytes;
    ssize_t size = 1;
    for (off_t place = 0; size > 0; place += size)
        size = ::pread(file.get(), bytes.data(), bytes.size(), place);
    return size == 0 ? QString() : qt_error_string(errno);
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
    // A disk that cannot be read at the moment may look like a damaged file, even to SQLite's own check.
    if (opened == Opened::Damaged) {
        close();
        *content = {};
        QString unreadable = whyUnreadable(m_path);
        if (unreadable.isEmpty())
            unreadable = whyUnreadable(m_path + QStringLiteral("-wal"));
        opened = unreadable.isEmpty() ? tryToOpen(content, &complaint) : Opened::Impossible;
        if (!unreadable.isEmpty())
            complaint = unreadable;
    }
    if (opened == Opened::Damaged) {
        close();
        *content = {};
        complaint = setAside(complaint);
        opened = complaint.isEmpty() ? tryToOpen(content, &complaint) : Opened::Impossible;
    }
    if (opened == Opened::Yes)
        return {};
    close();
    return QStringLiteral("%1: %2").arg(m_path, complaint);
}

JobDatabase::Opened JobDatabase::tryToOpen(DatabaseContent *content, QString *complaint)
{
    *complaint = makePrivateFile(m_path);
    if (!complaint->isEmpty())
        return Opened::Impossible;
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
    if (!m_putJob->prepare(putStatement()))
        return outcomeOfTables(m_putJob->lastError(), complaint);
    return load(content, complaint);
}

JobDatabase::Opened JobDatabase::prepareSchema(QString *complaint)
{
    const QVariant objects = valueOf(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    if (!objects.isValid())
        return outcomeOf(m_error, complaint);
    if (objects.toInt() == 0)
        return createSchema(complaint);

    const QVariant application = valueOf(QStringLiteral("PRAGMA application_id"));
    if (!application.isValid())
        return outcomeOf(m_error, complaint);
    if (application.toInt() != applicationId) {
        *complaint = QStringLiteral("a database of another program");
        return Opened::Damaged;
    }
    const QVariant version = valueOf(QStringLiteral("PRAGMA user_version"));
    if (!version.isValid())
        return outcomeOf(m_error, complaint);
    if (version.toInt() != schemaVersion) {
        const bool isLater = version.toInt() > schemaVersion;
        *complaint = isLater ? QStringLiteral("of a later version of this daemon")
                             : QStringLiteral("of no version of this daemon");
        return isLater ? Opened::Impossible : Opened::Damaged;
    }
    const QVariant check = valueOf(QStringLiteral("PRAGMA quick_check(1)"));
    if (!check.isValid())
        return outcomeOf(m_error, complaint);
    *complaint = check.toString().section(QLatin1Char('\n'), 0, 0);
    return check.toString() == QLatin1String("ok") ? Opened::Yes : Opened::Damaged;
}

/// Whether the file is what makes \a error, so that another one would do.
JobDatabase::Opened JobDatabase::outcomeOf(const QSqlError &error, QString *complaint)
{
    *complaint = error.isValid() ? error.databaseText() : QStringLiteral("it answers nothing");
    const int code = codeOf(error);
    return code == resultCorrupt || code == resultNotADatabase ? Opened::Damaged : Opened::Impossible;
}

/// The same for a statement that only other tables than the daemon's make wrong.
JobDatabase::Opened JobDatabase::outcomeOfTables(const QSqlError &error, QString *complaint)
{
    const Opened outcome = outcomeOf(error, complaint);
    return codeOf(error) == resultError ? Opened::Damaged : outcome;
}

JobDatabase::Opened JobDatabase::createSchema(QString *complaint)
{
    // They were those of another file, and a new store would have them removed.
    if (SetAside::hasFilesBeside(m_path)) {
        *complaint = QStringLiteral("missing or empty");
        return Opened::Damaged;
    }
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
    return isDone ? Opened::Yes : outcomeOf(m_error, complaint);
}

JobDatabase::Opened JobDatabase::load(DatabaseContent *content, QString *complaint)
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
                                          query.value(2).toLongLong(), query.value(3).toULongLong()});
           });
    if (!isRead)
        return outcomeOfTables(m_error, complaint);
    *complaint = QStringLiteral("it has no epoch");
    return hasState && !content->epoch.isEmpty() ? Opened::Yes : Opened::Damaged;
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
    if (query.exec(statement) && query.next() && !query.isNull(0))
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
                     {document.name, document.format, document.bytes, qlonglong(document.used)}))
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

/// Returns an empty text, or why it stays.
QString JobDatabase::setAside(const QString &complaint) const
{
    QString place;
    const QString failure = SetAside::rename(m_path, &place);
    if (!failure.isEmpty())
        return QStringLiteral("%1; it cannot be set aside: %2").arg(complaint, failure);
    qWarning().noquote() << "job store" << m_path << "is not usable,"
                         << complaint + QStringLiteral("; set aside as")
                         << place + QStringLiteral(", and a new one begins");
    return {};
}
