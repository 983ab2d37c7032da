// What ZBSettingsPrinter shows to QML, in its order, against literals.
#include "metaobjecttext.h"
#include "texts.h"
#include "zbsettingsprinter.h"

#include <QtCore/QMetaProperty>
#include <QtTest/QtTest>

namespace {

const QMetaObject &printerClass = ZBSettingsPrinter::staticMetaObject;

struct Property
{
    const char *name;
    const char *type;
};

constexpr Property properties[] = {
    {"orientationOption", "QString"},
    {"cutOption", "QString"},
    {"ditheringMethod", "QString"},
    {"orientationEnum", "int"},
    {"cutEnum", "int"},
    {"head1HeatOffset", "int"},
    {"head2HeatOffset", "int"},
    {"mirror", "bool"},
    {"negative", "bool"},
    {"overprint", "bool"},
    {"whitebase", "bool"},
    {"ribbonSaver", "bool"},
    {"orientationComboBoxModel", "QStringList"},
    {"cutComboBoxModel", "QStringList"},
    {"ditheringComboBoxModel", "QStringList"},
    {"backfeedOffset", "int"},
    {"feedOffset", "int"},
    {"horizontal1Offset", "int"},
    {"horizontal2Offset", "int"},
    {"vertical1Offset", "int"},
    {"vertical2Offset", "int"},
    {"r1Tension", "int"},
    {"r2Tension", "int"},
};

} // namespace

class TestPrinterSurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesAreInOrderAndReadOnly();
    void everyPropertyHasASignalInOrder();
    void slotsAreInOrder();
    void thereIsNothingElse();
};

void TestPrinterSurface::propertiesAreInOrderAndReadOnly()
{
    int index = printerClass.propertyOffset();
    for (const Property &row : properties) {
        const QMetaProperty property = printerClass.property(index++);
        QCOMPARE(property.name(), row.name);
        QCOMPARE(property.typeName(), row.type);
        QCOMPARE(property.notifySignal().methodSignature(),
                 QByteArray(row.name) + "Changed(" + QByteArray(row.type) + ')');
        QVERIFY(property.isReadable());
        QVERIFY(!property.isWritable());
        QVERIFY(!property.isConstant());
    }
    QCOMPARE(printerClass.propertyCount(), index);
}

void TestPrinterSurface::everyPropertyHasASignalInOrder()
{
    QStringList expected;
    for (const Property &row : properties)
        expected.append(QStringLiteral("public signal void %1Changed(%2 %1)")
                            .arg(QLatin1String(row.name), QLatin1String(row.type)));
    QCOMPARE(methodTexts(printerClass, QMetaMethod::Signal), expected);
}

void TestPrinterSurface::slotsAreInOrder()
{
    QCOMPARE(methodTexts(printerClass, QMetaMethod::Slot),
             texts({
                 "public slot void printTestPage(double supplyWidth)",
                 "public slot void setBackfeedOffset(int backfeedOffset)",
                 "public slot void setCutOption(QString cutOptionName)",
                 "public slot void setDitheringMethod(QString ditheringName)",
                 "public slot void setFeedOffset(int feedOffset)",
                 "public slot void setHead1HeatOffset(int heatOffset)",
                 "public slot void setHead2HeatOffset(int heatOffset)",
                 "public slot void setHorizontal1Offset(int horizontal1Offset)",
                 "public slot void setHorizontal2Offset(int horizontal2Offset)",
                 "public slot void setMirror(bool mirror)",
                 "public slot void setNegative(bool negative)",
                 "public slot void setOverprint(bool overprint)",
                 "public slot void setWhitebase(bool whitebase)",
                 "public slot void setPrintOrientation(QString orientationName)",
                 "public slot void setVertical1Offset(int vertical1Offset)",
                 "public slot void setVertical2Offset(int vertical2Offset)",
                 "public slot void setR1Tension(int r1Tension)",
                 "public slot void setR2Tension(int r2Tension)",
                 "public slot void setRibbonSaver(bool ribbonSaver)",
                 "public slot bool addPreset(QString presetName)",
                 "public slot void deletePreset(QString presetName)",
                 "public slot QStringList populatePresetList()",
                 "public slot QStringList loadPreset(QString presetName)",
                 "private slot void populateOrientationMap()",
                 "private slot void populateDitheringMap()",
                 "private slot void populateCutOptionsMap()",
             }));
}

void TestPrinterSurface::thereIsNothingElse()
{
    QCOMPARE(printerClass.className(), "ZBSettingsPrinter");
    QCOMPARE(printerClass.superClass(), &QObject::staticMetaObject);
    QCOMPARE(printerClass.methodCount() - printerClass.methodOffset(), 23 + 26);
    QCOMPARE(printerClass.enumeratorCount(), printerClass.enumeratorOffset());
    QCOMPARE(printerClass.classInfoCount(), printerClass.classInfoOffset());
    QCOMPARE(printerClass.constructorCount(), 0);
}

QTEST_APPLESS_MAIN(TestPrinterSurface)
#include "tst_printersurface.moc"
