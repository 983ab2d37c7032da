// The numbers that QML pages and the back-end objects exchange: every key, value and order of the enumeration
// holders, and that the holders have nothing else.
#include "zbsettingsqmlenums.h"

#include <QtCore/QMetaClassInfo>
#include <QtCore/QMetaEnum>
#include <QtTest/QtTest>

#include <type_traits>

namespace {

struct Key
{
    const char *name;
    int value;
};

struct Enumeration
{
    const char *name;
    QVector<Key> keys;
};

struct Holder
{
    const char *className;
    const QMetaObject *metaObject;
    QVector<Enumeration> enumerations;
};

const QVector<Holder> &holders()
{
    static const QVector<Holder> table{
        {"ZBSettingsAboutInfoFields",
         &ZBSettingsAboutInfoFields::staticMetaObject,
         {{"InfoFields",
           {{"SERIAL_NUMBER", 0},
            {"VERSION_NUMBERS", 1},
            {"STORAGE_VALUE", 2},
            {"ETHERNET_ADDRESS", 3},
            {"WIRELESS_ADDRESS", 4},
            {"OFFSET_VALUES", 5},
            {"CALIBRATION_VALUES", 6}}}}},
        {"QMLCupsEnums",
         &QMLCupsEnums::staticMetaObject,
         {{"Orientation", {{"LANDSCAPE", 4}, {"PORTRAIT", 3}, {"LANDSCAPE180", 5}, {"PORTRAIT180", 6}}},
          {"CutMedia", {{"CUT_MEDIA_NONE", 0}, {"CUT_MEDIA_PAGE", 1}, {"CUT_MEDIA_JOB", 2}}}}},
        {"ZBSettingsTabNames",
         &ZBSettingsTabNames::staticMetaObject,
         {{"TabNames",
           {{"GENERAL", 0},
            {"DATE_TIME", 1},
            {"NETWORKING", 2},
            {"SYSTEM_UPDATES", 3},
            {"LANGUAGES", 4},
            {"USERS_PASSWORDS", 5},
            {"PRINTER", 6},
            {"PRINTER_ALIGNMENT", 7},
            {"PRINTER_PRESETS", 8},
            {"ABOUT", 9},
            {"PRINTER_ADVANCED", 10},
            {"PRINTER_HISTORY", 11},
            {"TABNAME_MAX", 12}}}}},
    };
    return table;
}

QMetaEnum ownEnumeration(const QMetaObject *metaObject, const char *name)
{
    const int index = metaObject->indexOfEnumerator(name);
    return index < metaObject->enumeratorOffset() ? QMetaEnum() : metaObject->enumerator(index);
}

template <typename HolderClass>
constexpr bool
    isBareHolder = std::is_base_of_v<QObject, HolderClass> &&
                       std::is_default_constructible_v<HolderClass> && sizeof(HolderClass) == sizeof(QObject);

} // namespace

class TestQmlEnums : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreTheAgreedOnes_data();
    void numbersAreTheAgreedOnes();
    void enumeratorsOfTheCompilerAreTheSame();
    void holdersAreNamedObjectsDirectlyBelowQObject_data();
    void holdersAreNamedObjectsDirectlyBelowQObject();
    void holdersHaveNothingButTheirEnumerations_data();
    void holdersHaveNothingButTheirEnumerations();
    void holdersCanBeMadeAndDestroyed();
    void enumerationsArePlain_data();
    void enumerationsArePlain();
    void orientationStandsBeforeCutMediaAndStartsWithLandscape();
    void orientationKeysAreFoundByTheirValue();
    void lastTabNameIsTheNumberOfTabs();

private:
    static void addHolders();
};

void TestQmlEnums::addHolders()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < holders().size(); ++index)
        QTest::newRow(holders().at(index).className) << index;
}

void TestQmlEnums::numbersAreTheAgreedOnes_data()
{
    addHolders();
}

void TestQmlEnums::numbersAreTheAgreedOnes()
{
    QFETCH(int, index);
    const Holder &holder = holders().at(index);
    const QMetaObject *const metaObject = holder.metaObject;

    QCOMPARE(metaObject->enumeratorCount() - metaObject->enumeratorOffset(), holder.enumerations.size());
    for (int i = 0; i < holder.enumerations.size(); ++i) {
        const Enumeration &expected = holder.enumerations.at(i);
        const QMetaEnum actual = metaObject->enumerator(metaObject->enumeratorOffset() + i);
        QCOMPARE(actual.name(), expected.name);
        QCOMPARE(actual.enumName(), expected.name);
        QCOMPARE(actual.scope(), holder.className);
        QCOMPARE(actual.keyCount(), expected.keys.size());
        for (int k = 0; k < expected.keys.size(); ++k) {
            QCOMPARE(actual.key(k), expected.keys.at(k).name);
            QCOMPARE(actual.value(k), expected.keys.at(k).value);
            QCOMPARE(actual.keyToValue(expected.keys.at(k).name), expected.keys.at(k).value);
            QCOMPARE(actual.valueToKey(expected.keys.at(k).value), expected.keys.at(k).name);
        }
    }
}

// C++ callers use the enumerators themselves, which an application has compiled in.
void TestQmlEnums::enumeratorsOfTheCompilerAreTheSame()
{
    QCOMPARE(int(ZBSettingsAboutInfoFields::SERIAL_NUMBER), 0);
    QCOMPARE(int(ZBSettingsAboutInfoFields::CALIBRATION_VALUES), 6);
    QCOMPARE(int(QMLCupsEnums::LANDSCAPE), 4);
    QCOMPARE(int(QMLCupsEnums::PORTRAIT), 3);
    QCOMPARE(int(QMLCupsEnums::LANDSCAPE180), 5);
    QCOMPARE(int(QMLCupsEnums::PORTRAIT180), 6);
    QCOMPARE(int(QMLCupsEnums::CUT_MEDIA_JOB), 2);
    QCOMPARE(int(ZBSettingsTabNames::PRINTER_ADVANCED), 10);
    QCOMPARE(int(ZBSettingsTabNames::TABNAME_MAX), 12);
}

void TestQmlEnums::holdersAreNamedObjectsDirectlyBelowQObject_data()
{
    addHolders();
}

void TestQmlEnums::holdersAreNamedObjectsDirectlyBelowQObject()
{
    QFETCH(int, index);
    const Holder &holder = holders().at(index);
    QCOMPARE(holder.metaObject->className(), holder.className);
    QCOMPARE(holder.metaObject->superClass(), &QObject::staticMetaObject);
}

void TestQmlEnums::holdersHaveNothingButTheirEnumerations_data()
{
    addHolders();
}

void TestQmlEnums::holdersHaveNothingButTheirEnumerations()
{
    QFETCH(int, index);
    const QMetaObject *const metaObject = holders().at(index).metaObject;
    QCOMPARE(metaObject->propertyCount(), QObject::staticMetaObject.propertyCount());
    QCOMPARE(metaObject->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(metaObject->classInfoCount(), QObject::staticMetaObject.classInfoCount());
    QCOMPARE(metaObject->constructorCount(), 0);
}

void TestQmlEnums::holdersCanBeMadeAndDestroyed()
{
    static_assert(isBareHolder<ZBSettingsAboutInfoFields>);
    static_assert(isBareHolder<QMLCupsEnums>);
    static_assert(isBareHolder<ZBSettingsTabNames>);

    const ZBSettingsAboutInfoFields infoFields;
    const QMLCupsEnums cupsEnums;
    const ZBSettingsTabNames tabNames;
    QCOMPARE(infoFields.metaObject()->className(), "ZBSettingsAboutInfoFields");
    QCOMPARE(cupsEnums.metaObject()->className(), "QMLCupsEnums");
    QCOMPARE(tabNames.metaObject()->className(), "ZBSettingsTabNames");
}

void TestQmlEnums::enumerationsArePlain_data()
{
    addHolders();
}

void TestQmlEnums::enumerationsArePlain()
{
    QFETCH(int, index);
    const QMetaObject *const metaObject = holders().at(index).metaObject;
    for (int i = metaObject->enumeratorOffset(); i < metaObject->enumeratorCount(); ++i) {
        QVERIFY(metaObject->enumerator(i).isValid());
        QVERIFY(!metaObject->enumerator(i).isFlag());
        QVERIFY(!metaObject->enumerator(i).isScoped());
    }
}

void TestQmlEnums::orientationStandsBeforeCutMediaAndStartsWithLandscape()
{
    const QMetaObject &metaObject = QMLCupsEnums::staticMetaObject;
    QVERIFY(metaObject.indexOfEnumerator("Orientation") >= 0);
    QVERIFY(metaObject.indexOfEnumerator("Orientation") < metaObject.indexOfEnumerator("CutMedia"));
    const QMetaEnum orientation = ownEnumeration(&metaObject, "Orientation");
    QCOMPARE(orientation.key(0), "LANDSCAPE");
    QCOMPARE(orientation.value(0), 4);
}

void TestQmlEnums::orientationKeysAreFoundByTheirValue()
{
    const QMetaEnum orientation = ownEnumeration(&QMLCupsEnums::staticMetaObject, "Orientation");
    QCOMPARE(orientation.valueToKey(3), "PORTRAIT");
    QVERIFY(orientation.valueToKey(0) == nullptr);
}

void TestQmlEnums::lastTabNameIsTheNumberOfTabs()
{
    const QMetaEnum tabNames = ownEnumeration(&ZBSettingsTabNames::staticMetaObject, "TabNames");
    QCOMPARE(tabNames.keyToValue("TABNAME_MAX"), 12);
    QCOMPARE(tabNames.keyCount() - 1, 12);
    QCOMPARE(tabNames.key(tabNames.keyCount() - 1), "TABNAME_MAX");
}

QTEST_GUILESS_MAIN(TestQmlEnums)
#include "tst_qmlenums.moc"
