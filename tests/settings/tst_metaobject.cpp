// What the meta-objects of the public classes show to QML and to tools, line by line against golden files,
// and the orders that other programs count on against literals.
//
// A difference writes the new text beside the test's other output and says where it is. Accept a wanted
// change with
//   cp <that file> tests/settings/<class>.golden
#include "metaobjecttext.h"
#include "texts.h"
#include "zbprinterhistory.h"
#include "zbsettingsmain.h"
#include "zbsettingsprinter.h"
#include "zbsettingsqmlenums.h"

#include <QtCore/QMetaProperty>
#include <QtTest/QtTest>

namespace {

/// The lines that only one of the two texts has, as diff(1) marks them.
QString differenceBetween(const QString &expected, const QString &actual)
{
    const QStringList before = expected.split(QLatin1Char('\n'));
    const QStringList after = actual.split(QLatin1Char('\n'));
    QString text;
    for (const QString &line : before) {
        if (!after.contains(line))
            text += QStringLiteral("-%1\n").arg(line);
    }
    for (const QString &line : after) {
        if (!before.contains(line))
            text += QStringLiteral("+%1\n").arg(line);
    }
    for (int i = 0; text.isEmpty() && i < qMin(before.size(), after.size()); ++i) {
        if (before.at(i) != after.at(i))
            text = QStringLiteral("another order from line %1 on: %2\n").arg(i + 1).arg(after.at(i));
    }
    return text;
}

QString contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

Q_DECLARE_METATYPE(const QMetaObject *)

class TestMetaObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void surfaceIsTheAcceptedOne_data();
    void surfaceIsTheAcceptedOne();
    void propertiesFollowTheConstantsInOrder();
    void signalsAreInOrder();
    void slotsAreInOrder();
    void thereIsNothingElse();
};

void TestMetaObject::surfaceIsTheAcceptedOne_data()
{
    QTest::addColumn<const QMetaObject *>("metaObject");
    for (const QMetaObject *const metaObject :
         {&ZBPrinterHistory::staticMetaObject, &ZBSettingsMain::staticMetaObject,
          &ZBSettingsPrinter::staticMetaObject, &ZBSettingsAboutInfoFields::staticMetaObject,
          &QMLCupsEnums::staticMetaObject, &ZBSettingsTabNames::staticMetaObject})
        QTest::newRow(metaObject->className()) << metaObject;
}

void TestMetaObject::surfaceIsTheAcceptedOne()
{
    QFETCH(const QMetaObject *, metaObject);
    const QString className = QString::fromLatin1(metaObject->className()).toLower();
    const QString goldenName = QFINDTESTDATA(className + QStringLiteral(".golden"));
    QVERIFY2(!goldenName.isEmpty(), qPrintable(className));
    const QString expected = contentOf(goldenName);
    const QString actual = metaObjectText(*metaObject);
    const QString newName =
        QCoreApplication::applicationDirPath() + QLatin1Char('/') + className + QStringLiteral(".golden.new");
    if (actual == expected) {
        QFile::remove(newName);
        return;
    }

    QFile file(newName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(actual.toUtf8());
    QFAIL(qPrintable(QStringLiteral("%1 has changed:\n%2To accept it: cp %3 %4")
                         .arg(QLatin1String(metaObject->className()), differenceBetween(expected, actual),
                              newName, goldenName)));
}

void TestMetaObject::propertiesFollowTheConstantsInOrder()
{
    struct Row
    {
        const char *name;
        int type;
        const char *notifySignal;
    };
    constexpr Row rows[] = {
        {"settingLanguage", QMetaType::QString, "settingLanguageChanged(QString)"},
        {"settingUnits", QMetaType::UInt, "settingUnitsChanged(uint)"},
        {"settingKeyboardLayout", QMetaType::QString, "settingKeyboardLayoutChanged(QString)"},
        {"settingDisplayBrightness", QMetaType::UInt, "settingDisplayBrightnessChanged(uint)"},
        {"settingDisplayDimming", QMetaType::Int, "settingDisplayDimmingChanged(int)"},
        {"settingDisplayPower", QMetaType::Int, "settingDisplayPowerChanged(int)"},
        {"settingPrivacyAnalytics", QMetaType::Bool, "settingPrivacyAnalyticsChanged(bool)"},
        {"settingDateTime24Hour", QMetaType::Bool, "settingDateTime24HourChanged(bool)"},
        {"settingDateTimeAuto", QMetaType::Bool, "settingDateTimeAutoChanged(bool)"},
        {"settingDateFormat", QMetaType::QString, "settingDateFormatChanged(QString)"},
        {"settingUpdateAutoCheck", QMetaType::Bool, "settingUpdateAutoCheckChanged(bool)"},
        {"settingUpdateLastCheck", QMetaType::QString, "settingUpdateLastCheckChanged(QString)"},
        {"settingFirstBootApplication", QMetaType::Bool, "settingFirstBootApplicationChanged(bool)"},
        {"settingLockscreenAuto", QMetaType::Bool, "settingLockscreenAutoChanged(bool)"},
        {"settingZoomeLevel", QMetaType::UInt, "settingZoomeLevelChanged(uint)"},
        {"settingAppCollapsed", QMetaType::Bool, "settingAppCollapsedChanged(bool)"},
        {"settingDoubleClickOpen", QMetaType::Bool, "settingDoubleClickOpenChanged(bool)"},
        {"settingMountSharedFolder", QMetaType::Bool, "settingMountSharedFolderChanged(bool)"},
        {"settingFirstLaunchAppList", QMetaType::QStringList,
         "settingFirstLaunchAppListChanged(QStringList)"},
        {"languagesComboBoxModel", QMetaType::QStringList, "languagesComboBoxModelChanged(QStringList)"},
        {"keyboardLanguagesComboBoxModel", QMetaType::QStringList,
         "keyboardLanguagesComboBoxModelChanged(QStringList)"},
        {"isMilitaryShipped", QMetaType::Bool, "isMilitaryShippedChanged(bool)"},
        {"isInternetConnected", QMetaType::Bool, "isInternetConnectedChanged(bool)"},
    };
    const QMetaObject &metaObject = ZBSettingsMain::staticMetaObject;
    int index = metaObject.propertyOffset() + 28;
    for (const Row &row : rows) {
        const QMetaProperty property = metaObject.property(index++);
        QCOMPARE(property.name(), row.name);
        QCOMPARE(property.userType(), row.type);
        QCOMPARE(property.notifySignal().methodSignature(), QByteArray(row.notifySignal));
        QVERIFY(property.isReadable());
        QVERIFY(!property.isWritable());
        QVERIFY(!property.isConstant());
    }
    QCOMPARE(metaObject.propertyCount(), index);
}

void TestMetaObject::signalsAreInOrder()
{
    QCOMPARE(methodTexts(ZBSettingsMain::staticMetaObject, QMetaMethod::Signal),
             texts({
                 "public signal void settingLanguageChanged(QString settingLanguage)",
                 "public signal void settingUnitsChanged(uint settingUnits)",
                 "public signal void settingKeyboardLayoutChanged(QString settingKeyboardLayout)",
                 "public signal void settingDisplayBrightnessChanged(uint settingDisplayBrightness)",
                 "public signal void settingDisplayDimmingChanged(int settingDisplayDimming)",
                 "public signal void settingDisplayPowerChanged(int settingDisplayPower)",
                 "public signal void settingPrivacyAnalyticsChanged(bool settingPrivacyAnalytics)",
                 "public signal void settingDateTime24HourChanged(bool settingDateTime24Hour)",
                 "public signal void settingDateTimeAutoChanged(bool settingDateTimeAuto)",
                 "public signal void settingDateFormatChanged(QString settingDateFormat)",
                 "public signal void settingUpdateAutoCheckChanged(bool settingUpdateAutoCheck)",
                 "public signal void settingUpdateLastCheckChanged(QString settingUpdateLastCheck)",
                 "public signal void settingFirstBootApplicationChanged(bool settingFirstBootApplication)",
                 "public signal void settingLockscreenAutoChanged(bool settingLockscreenAuto)",
                 "public signal void settingZoomeLevelChanged(uint settingZoomeLevel)",
                 "public signal void settingAppCollapsedChanged(bool settingAppCollapsed)",
                 "public signal void settingDoubleClickOpenChanged(bool settingDoubleClickOpen)",
                 "public signal void settingMountSharedFolderChanged(bool settingMountSharedFolder)",
                 "public signal void settingFirstLaunchAppListChanged(QStringList settingFirstLaunchAppList)",
                 "public signal void languagesComboBoxModelChanged(QStringList languagesComboBoxModel)",
                 "public signal void keyboardLanguagesComboBoxModelChanged(QStringList "
                 "keyboardLanguagesComboBoxModel)",
                 "public signal void isMilitaryShippedChanged(bool isMilitaryShipped)",
                 "public signal void isInternetConnectedChanged(bool isInternetConnected)",
                 "public signal void tabEnumChanged(int tabEnum)",
             }));
}

void TestMetaObject::slotsAreInOrder()
{
    QCOMPARE(methodTexts(ZBSettingsMain::staticMetaObject, QMetaMethod::Slot),
             texts({
                 "public slot void setSetting(QString settingKey, QVariant settingValue)",
                 "public slot QVariant getSetting(QString settingKey, QVariant defaultValue)",
                 "public slot QVariant getSetting(QString settingKey) clone",
                 "public slot void setTime(QString minutes, QString hours)",
                 "public slot void setDate(QString year, QString month, QString day)",
                 "public slot void setAutoTime(bool enabled)",
                 "public slot void setKeyboardLanguage(int layoutIndex)",
                 "public slot QVariant getLanguageCode(int index)",
                 "public slot int getLanguageIndex()",
                 "public slot QStringList getLanguageComboBoxModel()",
                 "public slot QStringList getKeyboardLanguageComboBoxModel()",
                 "public slot QString getAboutInfo(int field)",
                 "public slot QStringList formatOffsets()",
                 "public slot bool isMilitaryShipped()",
                 "public slot void resetSupplyCalibration()",
                 "public slot void sendAnalyticHit(QString settingName, QVariant newValue)",
                 "public slot void checkInternetConnection()",
                 "private slot void localSocketDataReceived()",
                 "private slot void newClientConnection()",
                 "private slot void internetConnectionChanged(bool isConnected)",
             }));
}

void TestMetaObject::thereIsNothingElse()
{
    const QMetaObject &metaObject = ZBSettingsMain::staticMetaObject;
    QCOMPARE(metaObject.className(), "ZBSettingsMain");
    QCOMPARE(metaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), 24 + 20);
    QCOMPARE(metaObject.enumeratorCount(), metaObject.enumeratorOffset());
    QCOMPARE(metaObject.classInfoCount(), metaObject.classInfoOffset());
    QCOMPARE(metaObject.constructorCount(), 0);
}

QTEST_GUILESS_MAIN(TestMetaObject)
#include "tst_metaobject.moc"
