// The list model of print jobs: which signals tell the difference between two lists, and that they tell all
// of it.
#include "zbprintjobmodel.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QtTest>

#include <algorithm>
#include <numeric>

namespace {

using Tester = QAbstractItemModelTester;
constexpr auto fatal = Tester::FailureReportingMode::Fatal;
constexpr int roleCount = 24;

/// "a1" is a job with the GUID "a" and the status "1", ".1" one without a GUID, "!" no job at all.
QVariant job(const QString &text)
{
    if (text == QLatin1String("!"))
        return 5;
    QVariantMap map{{QStringLiteral("jobStatus"), text.mid(1)},
                    {QStringLiteral("heat1"), text.mid(1).toInt()}};
    if (text[0] != QLatin1Char('.'))
        map.insert(QStringLiteral("GUID"), text.left(1));
    return map;
}

QVariantList jobs(const QString &text)
{
    QVariantList list;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        list += job(word);
    return list;
}

QVariantMap mapAt(const ZBPrintJobModel &model, int row)
{
    const int role = model.roleNames().key("job");
    return model.index(row).data(role).toMap();
}

QString textOf(const QVariantMap &map)
{
    return map.value(QStringLiteral("GUID")).toString() + map.value(QStringLiteral("jobStatus")).toString();
}

/// What a view knows of the model that looks at it only when it is told to.
class PlainList : public QObject
{
public:
    explicit PlainList(ZBPrintJobModel *model)
        : m_model(model)
    {
        inserted(0, model->rowCount() - 1);
        connect(model, &ZBPrintJobModel::rowsInserted, this,
                [this](const QModelIndex &, int first, int last) { inserted(first, last); });
        connect(model, &ZBPrintJobModel::rowsRemoved, this, [this](const QModelIndex &, int first, int last) {
            m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
            log += QStringLiteral("-%1..%2").arg(first).arg(last);
        });
        connect(model, &ZBPrintJobModel::rowsMoved, this,
                [this](const QModelIndex &, int first, int last, const QModelIndex &, int to) {
                    QCOMPARE(last, first);
                    m_rows.move(first, to > first ? to - 1 : to);
                    log += QStringLiteral("%1>%2").arg(first).arg(to);
                });
        connect(model, &ZBPrintJobModel::layoutChanged, this, [this] {
            m_rows.clear();
            inserted(0, m_model->rowCount() - 1);
            log.last() = QStringLiteral("layout");
        });
        connect(model, &ZBPrintJobModel::modelReset, this, [this] { log += QStringLiteral("reset"); });
        connect(model, &ZBPrintJobModel::dataChanged, this,
                [this](const QModelIndex &first, const QModelIndex &last, const QVector<int> &roles) {
                    for (int row = first.row(); row <= last.row(); ++row) {
                        for (const int role : roles)
                            m_rows[row][role] = m_model->index(row).data(role);
                    }
                    QByteArrayList names;
                    for (const int role : roles)
                        names += m_model->roleNames().value(role);
                    log += QStringLiteral("%1..%2:").arg(first.row()).arg(last.row())
                        + QString::fromLatin1(names.join(','));
                });
    }

    /// Whether it shows these jobs, in every role.
    bool shows(const QVariantList &list) const
    {
        if (m_rows.size() != list.size())
            return false;
        for (int row = 0; row < list.size(); ++row) {
            const QVariantMap map = list.at(row).toMap();
            for (auto role = m_rows.at(row).cbegin(); role != m_rows.at(row).cend(); ++role) {
                const QString name = QString::fromLatin1(m_model->roleNames().value(role.key()));
                const QVariant expected = name == QLatin1String("job") ? QVariant(map) : map.value(name);
                if (*role != expected)
                    return false;
            }
        }
        return true;
    }

    QStringList log;

private:
    void inserted(int first, int last)
    {
        for (int row = first; row <= last; ++row) {
            QHash<int, QVariant> values;
            for (const int role : m_model->roleNames().keys())
                values.insert(role, m_model->index(row).data(role));
            m_rows.insert(row, values);
        }
        if (last >= first)
            log += QStringLiteral("+%1..%2").arg(first).arg(last);
    }

    ZBPrintJobModel *const m_model;
    QVector<QHash<int, QVariant>> m_rows;
};

/// As the back end has it.
class History : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList printJobsHistory MEMBER list NOTIFY printJobsHistoryChanged)

public:
    QVariantList list;

Q_SIGNALS:
    void printJobsHistoryChanged();
};

} // namespace

class TestPrintJobModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rolesAreTheKeysOfAJobAndTheJob();
    void signalsTellTheDifference_data();
    void signalsTellTheDifference();
    void oneChangedJobOfAThousandIsOneSignal_data();
    void oneChangedJobOfAThousandIsOneSignal();
    void valueOfAnotherTypeOrAlmostTheSameIsAChange_data();
    void valueOfAnotherTypeOrAlmostTheSameIsAChange();
    void keptIndexFollowsItsJob_data();
    void keptIndexFollowsItsJob();
    void jobIsFoundByItsGuid();
    void randomListsArriveWhole();
    void changeOfAllPlacesKeepsWhatIsKept();
    void jobThatChangesPlaceAmongManyIsOneMove();
    void listSetWhileChangesAreToldTakesEffectAfterThem();
    void historyIsFollowedUntilItIsTakenAway();
    void historyThatIsNoneIsSaid();
};

void TestPrintJobModel::rolesAreTheKeysOfAJobAndTheJob()
{
    ZBPrintJobModel model;
    QByteArrayList names = model.roleNames().values();
    std::sort(names.begin(), names.end());
    QCOMPARE(names.join(' '),
             QByteArray(
                 "GUID appName copyCount errorValue eventType heat1 heat2 imagePath job jobName jobStatus "
                 "ribbon1Color ribbon1Mileage ribbon1SKU ribbon2Color ribbon2Mileage ribbon2SKU seriesCount "
                 "supplyColor supplyMileage supplySKU tension1 tension2 timeStamp"));
    QVariantMap map;
    for (const QByteArray &name : qAsConst(names))
        map.insert(QString::fromLatin1(name), QVariant(name + "'s value"));
    map.remove(QStringLiteral("job"));
    model.setJobs({map});
    for (const QByteArray &name : qAsConst(names)) {
        const QVariant value = model.index(0).data(model.roleNames().key(name));
        QCOMPARE(value, name == "job" ? QVariant(map) : QVariant(name + "'s value"));
    }
    QVERIFY(!model.index(0).data(Qt::DisplayRole).isValid());
    QVERIFY(!model.index(0).data(Qt::UserRole + roleCount).isValid());
    QVERIFY(!model.index(1).data(Qt::UserRole).isValid());
    QCOMPARE(model.rowCount(model.index(0)), 0);
}

void TestPrintJobModel::signalsTellTheDifference_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("log");
    const auto row = [](const char *name, const char *before, const char *after, const char *log) {
        QTest::newRow(name) << QString::fromLatin1(before) << QString::fromLatin1(after)
                            << QString::fromLatin1(log);
    };
    row("nothing", "", "", "");
    row("first list", "", "a1 b1 c1", "+0..2");
    row("cleared", "a1 b1 c1", "", "-0..2");
    row("the same, made anew", "a1 b1", "a1 b1", "");
    row("new at the top", "b1 c1", "a1 b1 c1", "+0..0");
    row("new at the end", "a1", "a1 b1 c1", "+1..2");
    row("two runs are new", "b1 d1", "a1 b1 c1 d1", "+0..0 +2..2");
    row("gone from the middle", "a1 b1 c1 d1", "a1 d1", "-1..2");
    row("two runs are gone", "a1 b1 c1 d1 e1", "b1 c1 e1", "-3..3 -0..0");
    row("all others", "a1 b1", "c1 d1", "-0..1 +0..1");
    row("one changed", "a1 b1 c1", "a1 b2 c1", "1..1:jobStatus,heat1,job");
    row("neighbours changed alike", "a1 b1 c1", "a1 b2 c2", "1..2:jobStatus,heat1,job");
    row("not neighbours", "a1 b1 c1", "a2 b1 c2", "0..0:jobStatus,heat1,job 2..2:jobStatus,heat1,job");
    row("neighbours changed otherwise", "ax bx", "ay b2", "0..0:jobStatus,job 1..1:jobStatus,heat1,job");
    row("one goes to the top", "a1 b1 c1 d1", "c1 a1 b1 d1", "2>0");
    row("one goes down", "a1 b1 c1 d1", "b1 c1 a1 d1", "0>3");
    row("two change places", "a1 b1 c1 d1", "d1 b1 c1 a1", "0>4 2>0");
    row("other order", "a1 b1 c1 d1 e1", "e1 d1 c1 b1 a1", "0>5 0>4 0>3 0>2");
    row("all at once", "a1 b1 c1 d1", "d2 x1 b1 a1", "-2..2 0>3 0>2 +1..1 0..0:jobStatus,heat1,job");
    row("same GUID twice", "a1 a2 b1", "a1 a3 b1", "1..1:jobStatus,heat1,job");
    row("one of the same GUID is gone", "a1 b1 a2", "b1 a1", "-0..0 1..1:jobStatus,heat1,job");
    row("same GUID once more", "a1 b1", "a1 b1 a1", "+2..2");
    row("without GUID", ".1 a1 .2", ".3 a1 .2 .4", "+3..3 0..0:jobStatus,heat1,job");
    row("no job", "a1 ! b1", "a1 ! ! b1", "+2..2");
    row("job instead of no job", "! a1", ".1 a1", "0..0:jobStatus,heat1,job");
}

void TestPrintJobModel::signalsTellTheDifference()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(QString, log);
    ZBPrintJobModel model;
    const Tester tester(&model, fatal);
    model.setJobs(jobs(before));
    PlainList view(&model);
    view.log.clear();
    const QSignalSpy lists(&model, &ZBPrintJobModel::jobsChanged);
    const QSignalSpy counts(&model, &ZBPrintJobModel::countChanged);
    const QVariantList list = jobs(after);
    model.setJobs(list);
    QVERIFY(view.shows(list));
    QCOMPARE(view.log.join(QLatin1Char(' ')), log);
    QCOMPARE(model.count(), list.size());
    QCOMPARE(counts.count(), jobs(before).size() == list.size() ? 0 : 1);
    QCOMPARE(model.jobs(), list);
    // The list that is there already is no other list.
    const int told = lists.count();
    model.setJobs(list);
    QCOMPARE(lists.count(), told);
}

void TestPrintJobModel::oneChangedJobOfAThousandIsOneSignal_data()
{
    QTest::addColumn<bool>("isShared");
    QTest::newRow("the other maps are those of before") << true;
    QTest::newRow("all maps are made anew") << false;
}

void TestPrintJobModel::oneChangedJobOfAThousandIsOneSignal()
{
    QFETCH(bool, isShared);
    const auto make = [] {
        QVariantList list;
        for (int i = 0; i < 1000; ++i)
            list += QVariantMap{{QStringLiteral("GUID"), QString::number(i)},
                                {QStringLiteral("jobStatus"), QStringLiteral("Printing")},
                                {QStringLiteral("supplyMileage"), 0.1 * i}};
        return list;
    };
    QVariantList list = make();
    ZBPrintJobModel model;
    const Tester tester(&model, fatal);
    model.setJobs(list);
    PlainList view(&model);
    view.log.clear();
    if (!isShared)
        list = make();
    QVariantMap changed = list.at(700).toMap();
    changed.insert(QStringLiteral("jobStatus"), QStringLiteral("Printed"));
    list[700] = changed;
    model.setJobs(list);
    QVERIFY(view.shows(list));
    QCOMPARE(view.log, QStringList(QStringLiteral("700..700:jobStatus,job")));
}

void TestPrintJobModel::valueOfAnotherTypeOrAlmostTheSameIsAChange_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");
    QTest::newRow("number and text") << QVariant(1) << QVariant(QStringLiteral("1"));
    QTest::newRow("int and double") << QVariant(1) << QVariant(1.0);
    QTest::newRow("least difference") << QVariant(1.0) << QVariant(1.0 + 1e-15);
    QTest::newRow("nothing and an empty text") << QVariant() << QVariant(QString());
}

void TestPrintJobModel::valueOfAnotherTypeOrAlmostTheSameIsAChange()
{
    QFETCH(QVariant, before);
    QFETCH(QVariant, after);
    ZBPrintJobModel model;
    model.setJobs({QVariantMap{{QStringLiteral("supplyMileage"), before}}});
    PlainList view(&model);
    view.log.clear();
    model.setJobs({QVariantMap{{QStringLiteral("supplyMileage"), after}}});
    QCOMPARE(view.log, QStringList(QStringLiteral("0..0:supplyMileage,job")));
    // A key that no role has is a change of the whole.
    model.setJobs({QVariantMap{{QStringLiteral("supplyMileage"), after}, {QStringLiteral("other"), 1}}});
    QCOMPARE(view.log.value(1), QStringLiteral("0..0:job"));
}

void TestPrintJobModel::keptIndexFollowsItsJob_data()
{
    QTest::addColumn<QString>("after");
    QTest::addColumn<int>("row");
    QTest::newRow("changed") << QStringLiteral("a1 b1 c2 d1 e1") << 2;
    QTest::newRow("behind a new one") << QStringLiteral("x1 a1 b1 c1 d1 e1") << 3;
    QTest::newRow("before one that is gone") << QStringLiteral("b1 c1 e1") << 1;
    QTest::newRow("moved") << QStringLiteral("c1 a1 b1 d1 e1") << 0;
    QTest::newRow("passed by another") << QStringLiteral("d1 a1 b1 c1 e1") << 3;
    QTest::newRow("gone") << QStringLiteral("a1 b1 d1 e1") << -1;
}

void TestPrintJobModel::keptIndexFollowsItsJob()
{
    QFETCH(QString, after);
    QFETCH(int, row);
    ZBPrintJobModel model;
    model.setJobs(jobs(QStringLiteral("a1 b1 c1 d1 e1")));
    const QPersistentModelIndex kept(model.index(2));
    model.setJobs(jobs(after));
    QCOMPARE(kept.row(), row);
}

void TestPrintJobModel::jobIsFoundByItsGuid()
{
    ZBPrintJobModel model;
    model.setJobs(jobs(QStringLiteral("a1 ! b1 b2")));
    QCOMPARE(model.rowOf(QStringLiteral("b")), 2);
    QCOMPARE(model.rowOf(QStringLiteral("c")), -1);
    QCOMPARE(textOf(model.jobAt(3)), QStringLiteral("b2"));
    for (const int row : {-1, 1, 4})
        QCOMPARE(model.jobAt(row), QVariantMap());
}

void TestPrintJobModel::randomListsArriveWhole()
{
    QRandomGenerator random(20);
    const auto number = [&random](int below) { return int(random.bounded(below)); };
    ZBPrintJobModel model;
    const Tester tester(&model, fatal);
    const PlainList view(&model);
    QVariantList list;
    for (int round = 0; round < 200; ++round) {
        const auto add = [&] {
            const QString words[] = {QStringLiteral("!"), QStringLiteral(".%1").arg(number(3)),
                                     QString(QChar('a' + number(8))) + QString::number(number(3)),
                                     QString(QChar(0x4e00 + number(3000))) + QString::number(number(3))};
            list.insert(number(list.size() + 1), job(words[qMin(3, number(7))]));
        };
        for (int change = number(12); change > 0; --change) {
            const int what = number(10);
            if (what < 4 || list.isEmpty())
                add();
            else if (what < 7)
                list.removeAt(number(list.size()));
            else if (what < 9)
                list.move(number(list.size()), number(list.size()));
            else
                list[number(list.size())] = job(QStringLiteral("c%1").arg(number(5)));
        }
        if (number(60) == 0)
            list = {};
        if (number(8) == 0)
            std::shuffle(list.begin(), list.end(), random);
        model.setJobs(list);
        QVERIFY2(view.shows(list), qPrintable(QString::number(round)));
    }
    QVERIFY(!view.log.contains(QStringLiteral("reset")));
}

void TestPrintJobModel::changeOfAllPlacesKeepsWhatIsKept()
{
    QRandomGenerator random(5);
    QVariantList list;
    for (int i = 0; i < 1000; ++i)
        list += job(QString(QChar(0x4e00 + i)) + QString::number(i));
    ZBPrintJobModel model;
    const Tester tester(&model, fatal);
    model.setJobs(list);
    PlainList view(&model);
    QVector<QPersistentModelIndex> kept;
    QStringList texts;
    for (int row = 0; row < 1000; row += 90) {
        kept += QPersistentModelIndex(model.index(row));
        texts += textOf(mapAt(model, row));
    }
    view.log.clear();
    std::shuffle(list.begin() + 1, list.end() - 1, random);
    model.setJobs(list);
    QVERIFY(view.shows(list));
    QCOMPARE(view.log, QStringList(QStringLiteral("layout")));
    for (int i = 0; i < kept.size(); ++i)
        QCOMPARE(textOf(mapAt(model, kept.at(i).row())), texts.at(i));
}

void TestPrintJobModel::jobThatChangesPlaceAmongManyIsOneMove()
{
    QVariantList list;
    for (int i = 0; i < 2000; ++i)
        list += job(QString(QChar(0x4e00 + i)) + QStringLiteral("1"));
    ZBPrintJobModel model;
    model.setJobs(list);
    PlainList view(&model);
    view.log.clear();
    list.move(1900, 20);
    list.removeAt(1000);
    list.prepend(job(QStringLiteral("n1")));
    model.setJobs(list);
    QVERIFY(view.shows(list));
    QCOMPARE(view.log.join(QLatin1Char(' ')), QStringLiteral("-999..999 1899>20 +0..0"));
}

void TestPrintJobModel::listSetWhileChangesAreToldTakesEffectAfterThem()
{
    ZBPrintJobModel model;
    const Tester tester(&model, fatal);
    const PlainList view(&model);
    QStringList seen;
    connect(&model, &ZBPrintJobModel::rowsInserted, this, [&] {
        seen += QString::number(model.rowCount());
        if (model.rowCount() == 2)
            model.setJobs(jobs(QStringLiteral("x1 a1 b1 y1")));
    });
    connect(&model, &ZBPrintJobModel::jobsChanged, this,
            [&] { seen += QStringLiteral("list of %1").arg(model.jobs().size()); });
    model.setJobs(jobs(QStringLiteral("a1 b1")));
    QVERIFY(view.shows(jobs(QStringLiteral("x1 a1 b1 y1"))));
    // The second list puts one job before the others and one behind.
    QCOMPARE(seen.join(QStringLiteral(", ")), QStringLiteral("2, list of 2, 3, 4, list of 4"));
}

void TestPrintJobModel::historyIsFollowedUntilItIsTakenAway()
{
    ZBPrintJobModel model;
    const QSignalSpy lists(&model, &ZBPrintJobModel::jobsChanged);
    History history;
    history.list = jobs(QStringLiteral("a1 b1"));
    model.setHistory(&history);
    QCOMPARE(model.history(), &history);
    QCOMPARE(model.count(), 2);
    // Announced before it changes, as the back end does.
    Q_EMIT history.printJobsHistoryChanged();
    QCOMPARE(lists.count(), 1);
    history.list = jobs(QStringLiteral("c1 a1 b1"));
    Q_EMIT history.printJobsHistoryChanged();
    QCOMPARE(lists.count(), 2);
    QCOMPARE(model.count(), 3);

    model.setHistory(nullptr);
    history.list.clear();
    Q_EMIT history.printJobsHistoryChanged();
    QCOMPARE(model.count(), 3);
    {
        History other;
        model.setHistory(&other);
        QCOMPARE(model.count(), 0);
    }
    QCOMPARE(model.history(), nullptr);
}

void TestPrintJobModel::historyThatIsNoneIsSaid()
{
    ZBPrintJobModel model;
    model.setJobs(jobs(QStringLiteral("a1")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no property printJobsHistory")));
    QObject other;
    model.setHistory(&other);
    QCOMPARE(model.count(), 1);
}

QTEST_GUILESS_MAIN(TestPrintJobModel)
#include "tst_printjobmodel.moc"
