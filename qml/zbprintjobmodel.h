// ZBPrintJobModel: the list of print jobs as a model that says which rows changed.
#pragma once

#include <QtCore/QAbstractListModel>
#include <QtCore/QPointer>
#include <QtCore/QVariantList>
#include <QtCore/QVariantMap>

#include <optional>
#include <vector>

/**
 * Takes a list of print jobs, which is replaced as a whole whenever one job changes, and tells views what is
 * new in it, so that they keep their place, their focus and what they have made of the other rows.
 *
 * \code
 * ListView {
 *     model: ZBPrintJobModel { history: ZBPrinterHistory }
 *     delegate: Text { text: model.timeStamp + " " + model.jobName }
 * }
 * \endcode
 *
 * \par Roles
 * The 23 keys of a job as ZBPrinterHistory has them, and `job`, the whole map.
 *
 * \par Rows
 * One row an entry of the list, in its order. A job is told by its `GUID`; jobs with the same GUID, and those
 * without, pass for one another. An entry that is no map is a row without values.
 *
 * \par Signals
 * What is gone is removed, from the end of the list to its beginning; then rows that changed places are
 * moved, one by one; then what is new is inserted, from the beginning to the end. Rows that lie together go
 * and come together. At last dataChanged() names the rows with other values, and those of their roles that
 * changed; until then rows have their old values. Where more than 100 rows change places the order changes at
 * once, with layoutChanged(); indexes that are kept follow their jobs. The model is never reset.
 *
 * \par Cost
 * A list that is the one that is there already costs nothing. Maps that both lists share are not looked into,
 * as most of ZBPrinterHistory's are. The time grows with the number of jobs, n log n at most where their
 * order changed.
 */
class ZBPrintJobModel : public QAbstractListModel
{
    Q_OBJECT

    /// The jobs. Setting the list by a binding works, and converts each value to JavaScript and back: \a
    /// history, where it can be used, is faster.
    Q_PROPERTY(QVariantList jobs READ jobs WRITE setJobs NOTIFY jobsChanged)
    /// An object with a list property `printJobsHistory`, ZBPrinterHistory, from which the jobs are taken now
    /// and whenever it changes. Null: they are left as they are.
    Q_PROPERTY(QObject *history READ history WRITE setHistory NOTIFY historyChanged)
    /// How many jobs there are.
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    explicit ZBPrintJobModel(QObject *parent = nullptr);

    QVariantList jobs() const;
    /// Called again by one who hears of the changes while they are told, it takes effect when all of them
    /// are.
    void setJobs(const QVariantList &jobs);

    QObject *history() const;
    void setHistory(QObject *history);

    int count() const;

    /// The job in this row; an empty one outside the list.
    Q_INVOKABLE QVariantMap jobAt(int row) const;
    /// The first row with this GUID; -1 where there is none. Looks at one row after the other.
    Q_INVOKABLE int rowOf(const QString &guid) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// There is another list; all signals of the rows have been sent.
    void jobsChanged();
    void historyChanged();
    void countChanged();

private:
    using Rows = std::vector<QVariantMap>;
    using Places = std::vector<int>;

    Q_SLOT void takeJobsOfHistory();

    void update(const Rows &rows);
    void removeRowsExcept(const std::vector<bool> &isKept, int first, int last);
    void bringIntoOrder(const Places &order, int first);
    void moveRowsTo(const Places &order, const std::vector<bool> &stays, int first);
    void layRowsOut(const Places &order, int first);
    void insertMissing(const Rows &rows, const std::vector<bool> &isThere, int first);
    void replaceValues(const Rows &rows);

    QVariantList m_jobs;
    Rows m_rows;
    /// While rows are removed or inserted: those behind that place, last first.
    Rows m_rowsBehind;
    std::optional<QVariantList> m_next;
    bool m_isUpdating = false;
    QPointer<QObject> m_history;
};
