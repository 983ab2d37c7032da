// Turns the difference between two lists of print jobs into the signals of a model.
#include "zbprintjobmodel.h"

#include <QtCore/QHash>
#include <QtCore/QMetaProperty>
#include <QtQml/QQmlInfo>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr int mostMoves = 100;
constexpr int nowhere = -1;
constexpr char historyProperty[] = "printJobsHistory";

/// Keys of a job in the order of their roles, the first of which is Qt::UserRole.
const QStringList &keys()
{
    static const QStringList names = {
        QStringLiteral("timeStamp"),      QStringLiteral("GUID"),        QStringLiteral("jobName"),
        QStringLiteral("jobStatus"),      QStringLiteral("appName"),     QStringLiteral("errorValue"),
        QStringLiteral("copyCount"),      QStringLiteral("seriesCount"), QStringLiteral("heat1"),
        QStringLiteral("heat2"),          QStringLiteral("tension1"),    QStringLiteral("tension2"),
        QStringLiteral("eventType"),      QStringLiteral("supplySKU"),   QStringLiteral("supplyColor"),
        QStringLiteral("supplyMileage"),  QStringLiteral("ribbon1SKU"),  QStringLiteral("ribbon1Color"),
        QStringLiteral("ribbon1Mileage"), QStringLiteral("ribbon2SKU"),  QStringLiteral("ribbon2Color"),
        QStringLiteral("ribbon2Mileage"), QStringLiteral("imagePath")};
    return names;
}

int jobRole()
{
    return Qt::UserRole + keys().size();
}

QString guidOf(const QVariantMap &job)
{
    return job.value(QStringLiteral("GUID")).toString();
}

/// Other than QVariant's own comparison, which takes 1 and "1" for the same, and 1 and 1.0000000000001.
bool isSameValue(const QVariant &a, const QVariant &b)
{
    if (a.userType() != b.userType())
        return false;
    if (a.userType() == QMetaType::Double)
        return a.toDouble() == b.toDouble();
    return a == b;
}

/// The roles whose values differ; empty when none does.
QVector<int> changedRoles(const QVariantMap &before, const QVariantMap &after)
{
    if (before.isSharedWith(after))
        return {};
    const bool hasSameKeys =
        before.size() == after.size() && std::equal(before.keyBegin(), before.keyEnd(), after.keyBegin());
    if (hasSameKeys && std::equal(before.cbegin(), before.cend(), after.cbegin(), isSameValue))
        return {};
    QVector<int> roles;
    for (int i = 0; i < keys().size(); ++i) {
        if (!isSameValue(before.value(keys().at(i)), after.value(keys().at(i))))
            roles += Qt::UserRole + i;
    }
    roles += jobRole();
    return roles;
}

/// Where in the new list each row of the old one is: each row once, rows of the same GUID in their order.
std::vector<int> placesIn(const std::vector<QString> &after, const std::vector<QString> &before)
{
    QHash<QString, int> firstOfGuid;
    firstOfGuid.reserve(int(after.size()));
    std::vector<int> nextOfGuid(after.size(), nowhere);
    for (int i = int(after.size()) - 1; i >= 0; --i) {
        const auto known = firstOfGuid.find(after[size_t(i)]);
        if (known == firstOfGuid.end()) {
            firstOfGuid.insert(after[size_t(i)], i);
        } else {
            nextOfGuid[size_t(i)] = *known;
            *known = i;
        }
    }
    std::vector<int> places;
    places.reserve(before.size());
    for (const QString &guid : before) {
        const auto known = firstOfGuid.find(guid);
        const int place = known == firstOfGuid.end() ? nowhere : *known;
        if (place != nowhere)
            *known = nextOfGuid[size_t(place)];
        places.push_back(place);
    }
    return places;
}

/// Which entries can stay when as few as possible are moved to make the numbers rise: a longest rising
/// subsequence.
std::vector<bool> stayingEntries(const std::vector<int> &numbers)
{
    std::vector<size_t> ends; // of rising subsequences by their length, each with the lowest last number
    std::vector<size_t> before(numbers.size());
    for (size_t i = 0; i < numbers.size(); ++i) {
        const auto end = std::lower_bound(ends.begin(), ends.end(), numbers[i],
                                          [&numbers](size_t at, int number) { return numbers[at] < number; });
        before[i] = end == ends.begin() ? i : *(end - 1);
        if (end == ends.end())
            ends.push_back(i);
        else
            *end = i;
    }
    std::vector<bool> stays(numbers.size());
    for (size_t left = ends.size(), at = left > 0 ? ends.back() : 0; left > 0; --left, at = before[at])
        stays[at] = true;
    return stays;
}

} // namespace

ZBPrintJobModel::ZBPrintJobModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

QVariantList ZBPrintJobModel::jobs() const
{
    return m_jobs;
}

QObject *ZBPrintJobModel::history() const
{
    return m_history;
}

int ZBPrintJobModel::count() const
{
    return int(m_rows.size() + m_rowsBehind.size());
}

QVariantMap ZBPrintJobModel::jobAt(int row) const
{
    if (row < 0 || row >= count())
        return {};
    const auto place = size_t(row);
    return place < m_rows.size() ? m_rows[place] : m_rowsBehind[size_t(count()) - 1 - place];
}

int ZBPrintJobModel::rowOf(const QString &guid) const
{
    for (int row = 0; row < count(); ++row) {
        if (guidOf(jobAt(row)) == guid)
            return row;
    }
    return nowhere;
}

int ZBPrintJobModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ZBPrintJobModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QVariantMap job = jobAt(index.row());
    if (role == jobRole())
        return job;
    const int key = role - Qt::UserRole;
    return key >= 0 && key < keys().size() ? job.value(keys().at(key)) : QVariant();
}

QHash<int, QByteArray> ZBPrintJobModel::roleNames() const
{
    QHash<int, QByteArray> names;
    for (int i = 0; i < keys().size(); ++i)
        names.insert(Qt::UserRole + i, keys().at(i).toLatin1());
    names.insert(jobRole(), QByteArrayLiteral("job"));
    return names;
}

void ZBPrintJobModel::setHistory(QObject *history)
{
    if (history == m_history)
        return;
    if (m_history)
        m_history->disconnect(this);
    m_history = history;
    if (history) {
        const QMetaObject &type = *history->metaObject();
        const QMetaProperty property = type.property(type.indexOfProperty(historyProperty));
        const QMetaMethod take = staticMetaObject.method(staticMetaObject.indexOfSlot("takeJobsOfHistory()"));
        if (!property.hasNotifySignal())
            qmlWarning(this) << "The history has no property " << historyProperty << " that can be followed.";
        else
            connect(history, property.notifySignal(), this, take);
        takeJobsOfHistory();
    }
    Q_EMIT historyChanged();
}

void ZBPrintJobModel::takeJobsOfHistory()
{
    const QVariant jobs = m_history ? m_history->property(historyProperty) : QVariant();
    if (jobs.isValid())
        setJobs(jobs.toList());
}

void ZBPrintJobModel::setJobs(const QVariantList &jobs)
{
    if (m_isUpdating) {
        m_next = jobs;
        return;
    }
    if (jobs.isSharedWith(m_jobs) || (jobs.isEmpty() && m_jobs.isEmpty()))
        return;
    m_isUpdating = true;
    for (m_next = jobs; m_next;) {
        const QVariantList next = *std::exchange(m_next, std::nullopt);
        Rows rows;
        rows.reserve(size_t(next.size()));
        for (const QVariant &job : next)
            rows.push_back(job.toMap());
        const int before = count();
        update(rows);
        m_jobs = next;
        if (count() != before)
            Q_EMIT countChanged();
        Q_EMIT jobsChanged();
    }
    m_isUpdating = false;
}

void ZBPrintJobModel::update(const Rows &rows)
{
    // Mostly next to nothing changed: rows that are in the same order at both ends need no search.
    const auto differences = std::mismatch(m_rows.begin(), m_rows.end(), rows.begin(), rows.end(),
                                           [](const QVariantMap &a, const QVariantMap &b) {
                                               return a.isSharedWith(b) || guidOf(a) == guidOf(b);
                                           });
    const auto first = int(differences.first - m_rows.begin());
    int end = int(m_rows.size());
    int newEnd = int(rows.size());
    while (end > first && newEnd > first
           && guidOf(m_rows[size_t(end) - 1]) == guidOf(rows[size_t(newEnd) - 1])) {
        --end;
        --newEnd;
    }

    if (first < end || first < newEnd) {
        const auto guids = [first](const Rows &source, int last) {
            std::vector<QString> texts;
            texts.reserve(size_t(last - first));
            std::transform(source.begin() + first, source.begin() + last, std::back_inserter(texts), guidOf);
            return texts;
        };
        Places places = placesIn(guids(rows, newEnd), guids(m_rows, end));
        std::vector<bool> isKept(places.size());
        std::transform(places.begin(), places.end(), isKept.begin(),
                       [](int place) { return place != nowhere; });
        removeRowsExcept(isKept, first, end);
        places.erase(std::remove(places.begin(), places.end(), nowhere), places.end());
        bringIntoOrder(places, first);
        std::vector<bool> isThere(size_t(newEnd - first));
        for (const int place : places)
            isThere[size_t(place)] = true;
        insertMissing(rows, isThere, first);
    }
    replaceValues(rows);
}

void ZBPrintJobModel::removeRowsExcept(const std::vector<bool> &isKept, int first, int last)
{
    if (std::find(isKept.begin(), isKept.end(), false) == isKept.end())
        return;
    // Rows at the end go aside one by one, so that each row is moved twice at most, however many runs there
    // are.
    const auto setAside = [this](int from) {
        while (int(m_rows.size()) > from) {
            m_rowsBehind.push_back(std::move(m_rows.back()));
            m_rows.pop_back();
        }
    };
    setAside(last);
    for (int end = last; end > first;) {
        int begin = end;
        while (begin > first && !isKept[size_t(begin - 1 - first)])
            --begin;
        if (begin < end) {
            beginRemoveRows({}, begin, end - 1);
            m_rows.resize(size_t(begin));
            endRemoveRows();
        }
        for (end = begin; end > first && isKept[size_t(end - 1 - first)];)
            --end;
        setAside(end);
    }
    m_rows.insert(m_rows.end(), std::make_move_iterator(m_rowsBehind.rbegin()),
                  std::make_move_iterator(m_rowsBehind.rend()));
    m_rowsBehind.clear();
}

void ZBPrintJobModel::bringIntoOrder(const Places &order, int first)
{
    const std::vector<bool> stays = stayingEntries(order);
    const auto moves = std::count(stays.begin(), stays.end(), false);
    if (moves > mostMoves)
        layRowsOut(order, first);
    else if (moves > 0)
        moveRowsTo(order, stays, first);
}

void ZBPrintJobModel::moveRowsTo(const Places &order, const std::vector<bool> &stays, int first)
{
    struct Entry
    {
        int place;
        bool isSettled;
    };
    std::vector<Entry> entries;
    std::vector<int> moving;
    for (size_t i = 0; i < order.size(); ++i) {
        entries.push_back({order[i], stays[i]});
        if (!stays[i])
            moving.push_back(order[i]);
    }
    const auto begin = entries.begin();
    for (const int place : moving) {
        const auto entry =
            std::find_if(begin, entries.end(), [place](const Entry &other) { return other.place == place; });
        const auto successor = std::find_if(begin, entries.end(), [place](const Entry &other) {
            return other.isSettled && other.place > place;
        });
        entry->isSettled = true;
        const auto from = int(entry - begin);
        const auto to = int(successor - begin);
        if (to == from + 1)
            continue;
        beginMoveRows({}, first + from, first + from, {}, first + to);
        const auto turn = [from, to](auto start) {
            if (from < to)
                std::rotate(start + from, start + from + 1, start + to);
            else
                std::rotate(start + to, start + from, start + from + 1);
        };
        turn(begin);
        turn(m_rows.begin() + first);
        endMoveRows();
    }
}

void ZBPrintJobModel::layRowsOut(const Places &order, int first)
{
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<int> sorted(order.size());
    std::iota(sorted.begin(), sorted.end(), 0);
    std::sort(sorted.begin(), sorted.end(),
              [&order](int a, int b) { return order[size_t(a)] < order[size_t(b)]; });
    Rows rows;
    rows.reserve(order.size());
    std::vector<int> newRow(order.size());
    for (const int entry : sorted) {
        newRow[size_t(entry)] = first + int(rows.size());
        rows.push_back(std::move(m_rows[size_t(first + entry)]));
    }
    std::move(rows.begin(), rows.end(), m_rows.begin() + first);
    const QModelIndexList kept = persistentIndexList();
    QModelIndexList moved;
    for (const QModelIndex &old : kept) {
        const int entry = old.row() - first;
        moved += entry >= 0 && entry < int(newRow.size()) ? index(newRow[size_t(entry)]) : old;
    }
    changePersistentIndexList(kept, moved);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

void ZBPrintJobModel::insertMissing(const Rows &rows, const std::vector<bool> &isThere, int first)
{
    if (std::find(isThere.begin(), isThere.end(), false) == isThere.end())
        return;
    m_rowsBehind.assign(std::make_move_iterator(m_rows.rbegin()),
                        std::make_move_iterator(m_rows.rend() - first));
    m_rows.resize(size_t(first));
    m_rows.reserve(rows.size());
    const int last = first + int(isThere.size());
    for (int row = first; row < last;) {
        if (isThere[size_t(row - first)]) {
            m_rows.push_back(std::move(m_rowsBehind.back()));
            m_rowsBehind.pop_back();
            ++row;
            continue;
        }
        int end = row + 1;
        while (end < last && !isThere[size_t(end - first)])
            ++end;
        beginInsertRows({}, row, end - 1);
        m_rows.insert(m_rows.end(), rows.begin() + row, rows.begin() + end);
        endInsertRows();
        row = end;
    }
    m_rows.insert(m_rows.end(), std::make_move_iterator(m_rowsBehind.rbegin()),
                  std::make_move_iterator(m_rowsBehind.rend()));
    m_rowsBehind.clear();
}

void ZBPrintJobModel::replaceValues(const Rows &rows)
{
    QVector<int> roles;
    int begin = 0;
    const auto tellUntil = [this, &roles, &begin](int end) {
        if (!roles.isEmpty())
            Q_EMIT dataChanged(index(begin), index(end - 1), roles);
    };
    for (int row = 0; row < int(rows.size()); ++row) {
        const QVector<int> changed = changedRoles(m_rows[size_t(row)], rows[size_t(row)]);
        if (changed != roles) {
            tellUntil(row);
            roles = changed;
            begin = row;
        }
        m_rows[size_t(row)] = rows[size_t(row)];
    }
    tellUntil(int(rows.size()));
}
