// The state file: what is written, what is read, and what happens to a file that is none.
#include "statestore.h"

#include <QtTest/QtTest>

class StateStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void withoutAFileTheValuesAreTheInitialOnesAndNoneIsMade();
    void aChangeIsThereAfterALoad();
    void theFileIsReadableJson();
    void valuesOfAnyTypeSurvive_data();
    void valuesOfAnyTypeSurvive();
    void aMissingValueIsTheInitialOne();
    void anUnusableFileIsSetAside_data();
    void anUnusableFileIsSetAside();
    void everyUnusableFileIsKept();
    void theLastOfManyUnusableFilesTakesThePlaceOfTheFifth();
    void aFileCutAnywhereIsSetAsideOrWhole();
    void aFailedChangeLeavesTheValue();
    void aMissingFolderIsMade();
    void aFolderThatCannotBeMadeIsAFailure();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString statePath() const { return path(QStringLiteral("state.json")); }
    QByteArray read(const QString &filePath) const;
    void write(const QByteArray &text) const;
    static void expectLogged(const char *pattern);

    std::unique_ptr<QTemporaryDir> m_directory;
};

void StateStoreTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

QByteArray StateStoreTest::read(const QString &filePath) const
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void StateStoreTest::write(const QByteArray &text) const
{
    QFile file(statePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
}

void StateStoreTest::expectLogged(const char *pattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QString::fromUtf8(pattern)));
}

void StateStoreTest::withoutAFileTheValuesAreTheInitialOnesAndNoneIsMade()
{
    StateStore store(m_directory->path());
    store.load();
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(7U));
    QCOMPARE(store.value(Value::DateFormat), QVariant(QStringLiteral("MM/dd/yy")));
    QVERIFY(QDir(m_directory->path()).isEmpty());
}

void StateStoreTest::aChangeIsThereAfterALoad()
{
    StateStore store(m_directory->path());
    QCOMPARE(store.change(Value::DisplayBrightness, 3U), QString());
    QCOMPARE(store.change(Value::DateFormat, QStringLiteral("dd.MM.yyyy")), QString());

    StateStore other(m_directory->path());
    other.load();
    QCOMPARE(other.value(Value::DisplayBrightness), QVariant(3U));
    QCOMPARE(other.value(Value::DateFormat), QVariant(QStringLiteral("dd.MM.yyyy")));
    QCOMPARE(other.value(Value::DisplayDimTime), QVariant(2));
    // Nothing else stays in the folder.
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList{QStringLiteral("state.json")});
}

void StateStoreTest::theFileIsReadableJson()
{
    StateStore store(m_directory->path());
    QCOMPARE(store.change(Value::ShipMode, 2), QString());
    QCOMPARE(read(statePath()),
             QByteArray("{\n"
                        "    \"automaticUpdateCheck\": true,\n"
                        "    \"dateFormat\": \"MM/dd/yy\",\n"
                        "    \"displayBrightness\": 7,\n"
                        "    \"displayDimTime\": 2,\n"
                        "    \"displayPowerOffTime\": 11,\n"
                        "    \"format\": \"zbutilityd state 1\",\n"
                        "    \"shipMode\": 2,\n"
                        "    \"twentyFourHourMode\": false\n"
                        "}\n"));
}

void StateStoreTest::valuesOfAnyTypeSurvive_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QVariant>("newValue");
    QTest::newRow("smallest integer") << int(Value::ShipMode) << QVariant(INT_MIN);
    QTest::newRow("largest integer") << int(Value::ShipMode) << QVariant(INT_MAX);
    QTest::newRow("unsigned") << int(Value::DisplayBrightness) << QVariant(9U);
    QTest::newRow("false") << int(Value::AutomaticUpdateCheck) << QVariant(false);
    QTest::newRow("true") << int(Value::TwentyFourHourMode) << QVariant(true);
    QTest::newRow("text") << int(Value::DateFormat) << QVariant(QStringLiteral("dddd, d MMMM yyyy"));
}

void StateStoreTest::valuesOfAnyTypeSurvive()
{
    QFETCH(int, value);
    QFETCH(QVariant, newValue);
    StateStore store(m_directory->path());
    QCOMPARE(store.change(static_cast<Value>(value), newValue), QString());
    StateStore other(m_directory->path());
    other.load();
    QCOMPARE(other.value(static_cast<Value>(value)), newValue);
    QCOMPARE(other.value(static_cast<Value>(value)).userType(), newValue.userType());
}

void StateStoreTest::aMissingValueIsTheInitialOne()
{
    write(R"({"format": "zbutilityd state 1", "displayBrightness": 4, "ofALaterVersion": 1})");
    StateStore store(m_directory->path());
    store.load();
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(4U));
    QCOMPARE(store.value(Value::DisplayPowerOffTime), QVariant(11));
}

void StateStoreTest::anUnusableFileIsSetAside_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("[display]\nbrightness=3\n");
    QTest::newRow("NUL bytes") << QByteArray(4096, '\0');
    QTest::newRow("rubbish") << QByteArray("\xff\xfe\x80{\"format\"");
    QTest::newRow("half written") << QByteArray(R"({"format": "zbutilityd state 1", "displayBri)");
    QTest::newRow("an array") << QByteArray("[1, 2]");
    QTest::newRow("an object of somebody else") << QByteArray(R"({"displayBrightness": 3})");
    QTest::newRow("a later format") << QByteArray(
        R"({"format": "zbutilityd state 2", "displayBrightness": 3})");
    QTest::newRow("format of another type") << QByteArray(R"({"format": 1})");
    QTest::newRow("value out of range")
        << QByteArray(R"({"format": "zbutilityd state 1", "displayDimTime": 1, "displayBrightness": 10})");
    QTest::newRow("negative brightness")
        << QByteArray(R"({"format": "zbutilityd state 1", "displayBrightness": -1})");
    QTest::newRow("no whole number") << QByteArray(
        R"({"format": "zbutilityd state 1", "displayBrightness": 3.5})");
    QTest::newRow("huge number") << QByteArray(R"({"format": "zbutilityd state 1", "shipMode": 1e300})");
    QTest::newRow("text for a number")
        << QByteArray(R"({"format": "zbutilityd state 1", "displayBrightness": "3"})");
    QTest::newRow("number for a bool")
        << QByteArray(R"({"format": "zbutilityd state 1", "twentyFourHourMode": 1})");
    QTest::newRow("null") << QByteArray(R"({"format": "zbutilityd state 1", "dateFormat": null})");
    QTest::newRow("date format") << QByteArray(R"({"format": "zbutilityd state 1", "dateFormat": "hh:mm"})");
    QTest::newRow("10 MB") << QByteArray(R"({"format": "zbutilityd state 1"})")
            + QByteArray(10 * 1024 * 1024, ' ');
}

void StateStoreTest::anUnusableFileIsSetAside()
{
    QFETCH(QByteArray, text);
    write(text);
    expectLogged("^state file .*/state\\.json is not usable, .+; set aside as .*/state\\.json\\.damaged-1$");
    StateStore store(m_directory->path());
    store.load();
    QCOMPARE(store.value(Value::DisplayDimTime), QVariant(2));
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(7U));
    QVERIFY(!QFile::exists(statePath()));
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-1"))), text);
    QCOMPARE(store.change(Value::DisplayBrightness, 5U), QString());
    QVERIFY(QFile::exists(statePath()));
}

void StateStoreTest::everyUnusableFileIsKept()
{
    for (const char *const text : {"first", "second", "third"}) {
        write(text);
        expectLogged("set aside as");
        StateStore(m_directory->path()).load();
    }
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-1"))), QByteArray("first"));
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-2"))), QByteArray("second"));
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-3"))), QByteArray("third"));
}

void StateStoreTest::theLastOfManyUnusableFilesTakesThePlaceOfTheFifth()
{
    for (const char *const text : {"1", "2", "3", "4", "5", "6", "7"}) {
        write(text);
        expectLogged("set aside as");
        StateStore(m_directory->path()).load();
    }
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-4"))), QByteArray("4"));
    QCOMPARE(read(path(QStringLiteral("state.json.damaged-5"))), QByteArray("7"));
    QVERIFY(!QFile::exists(path(QStringLiteral("state.json.damaged-6"))));
}

void StateStoreTest::aFileCutAnywhereIsSetAsideOrWhole()
{
    StateStore store(m_directory->path());
    QCOMPARE(store.change(Value::DisplayBrightness, 4U), QString());
    const QByteArray whole = read(statePath());
    for (int length = 0; length < whole.size(); ++length) {
        QString complaint;
        const auto values = stateFromText(whole.left(length), &complaint);
        // Only the line end at the very end can be missing.
        QCOMPARE(values.has_value(), length == whole.size() - 1);
        QCOMPARE(complaint.isEmpty(), values.has_value());
    }
}

void StateStoreTest::aFailedChangeLeavesTheValue()
{
    StateStore store(m_directory->path());
    QCOMPARE(store.change(Value::DisplayBrightness, 4U), QString());
    // A folder in the place of the file stops root too.
    QVERIFY(QFile::remove(statePath()));
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("state.json")));
    const QString failure = store.change(Value::DisplayBrightness, 5U);
    QVERIFY2(failure.startsWith(statePath() + QStringLiteral(": ")), qPrintable(failure));
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(4U));

    expectLogged("^no file, so no value can be kept: ");
    store.load();
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(7U));
    QVERIFY(QFileInfo(statePath()).isDir());
}

void StateStoreTest::aMissingFolderIsMade()
{
    StateStore store(path(QStringLiteral("one/two")));
    store.load();
    QCOMPARE(store.change(Value::DisplayBrightness, 4U), QString());
    QVERIFY(QFile::exists(path(QStringLiteral("one/two/state.json"))));
}

void StateStoreTest::aFolderThatCannotBeMadeIsAFailure()
{
    write("a file where the folder should be");
    StateStore store(statePath());
    store.load();
    QCOMPARE(store.change(Value::DisplayBrightness, 4U),
             QStringLiteral("the folder %1 cannot be created").arg(statePath()));
    QCOMPARE(store.value(Value::DisplayBrightness), QVariant(7U));
}

QTEST_GUILESS_MAIN(StateStoreTest)
#include "tst_statestore.moc"
