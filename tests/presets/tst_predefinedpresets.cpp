// The presets that come with the device, with and without a file of its maker.
#include "filebytes.h"
#include "predefinedpresets.h"

#include <QtTest/QtTest>

class TestPredefinedPresets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSystemPresetIsTheMakersFile_data();
    void theSystemPresetIsTheMakersFile();
    void withoutTheMakersFolderNothingIsLogged();
};

void TestPredefinedPresets::theSystemPresetIsTheMakersFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("systemOptions");
    QTest::addColumn<QString>("complaint"); // without the file's name

    const QStringList defaults{QStringLiteral("orientation-requested"), QStringLiteral("5"),
                               QStringLiteral("copies"), QStringLiteral("1")};
    const QByteArray head = "Corvanta preset, format 1\nmodel: BrackenXL\nname: Factory\n";
    QTest::newRow("good") << head + "[options]\nDithering: 16\nFeed: 3\n[end]\n"
                          << QStringList{QStringLiteral("Dithering"), QStringLiteral("16"),
                                         QStringLiteral("Feed"), QStringLiteral("3")}
                          << QString();
    QTest::newRow("missing") << QByteArray() << defaults << QString();
    QTest::newRow("damaged") << head << defaults << QStringLiteral("it is damaged or no preset");
    QTest::newRow("another model")
        << QByteArray(head + "[options]\nFeed: 3\n[end]\n").replace("BrackenXL", "Other") << defaults
        << QStringLiteral("it is for the model Other");
}

void TestPredefinedPresets::theSystemPresetIsTheMakersFile()
{
    QFETCH(QByteArray, file);
    QFETCH(QStringList, systemOptions);
    QFETCH(QString, complaint);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("system.preset"));
    if (!file.isEmpty())
        QVERIFY(FileBytes::write(path, file));

    QStringList complaints;
    const QVector<PresetRecord> presets = predefinedPresets(QStringLiteral("BrackenXL"), path, &complaints);
    QCOMPARE(presets.size(), 3);
    QCOMPARE(presets.at(0).displayName, QStringLiteral("<Current Settings>"));
    QCOMPARE(presets.at(0).options, QStringList());
    QCOMPARE(presets.at(1).displayName, QStringLiteral("<System Settings>"));
    QCOMPARE(presets.at(1).options, systemOptions);
    QCOMPARE(presets.at(2).displayName, QStringLiteral("<Default Settings>"));
    QCOMPARE(presets.at(2).options,
             QStringList({QStringLiteral("orientation-requested"), QStringLiteral("5"),
                          QStringLiteral("copies"), QStringLiteral("1")}));
    QStringList expected;
    if (!complaint.isEmpty())
        expected.append(QStringLiteral("cannot use %1: %2").arg(path, complaint));
    QCOMPARE(complaints, expected);
    QCOMPARE(FileBytes::read(path), file);
}

void TestPredefinedPresets::withoutTheMakersFolderNothingIsLogged()
{
    const QTemporaryDir folder;
    QStringList complaints;
    const QVector<PresetRecord> presets = predefinedPresets(
        QStringLiteral("BrackenXL"), folder.filePath(QStringLiteral("presets/system.preset")), &complaints);
    QCOMPARE(presets.size(), 3);
    QCOMPARE(complaints, QStringList());
    QVERIFY(QDir(folder.path()).isEmpty());
}

QTEST_GUILESS_MAIN(TestPredefinedPresets)
#include "tst_predefinedpresets.moc"
