// What the command line of the Settings application means.
#include "commandline.h"

#include <QtTest/QtTest>

Q_DECLARE_METATYPE(CommandLine::Task)

class TestSettingsCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void taskFollowsFromTheOptions_data();
    void taskFollowsFromTheOptions();
    void nonsenseIsRefusedWithOneLine_data();
    void nonsenseIsRefusedWithOneLine();
    void windowHasTheSizeOfTheDeviceUnlessTold();
    void helpNamesEveryOption_data();
    void helpNamesEveryOption();
    void helpNamesEveryTab();
};

namespace {

CommandLine read(const QString &arguments)
{
    return readCommandLine(
        QStringLiteral("zbsettings %1").arg(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

} // namespace

void TestSettingsCommandLine::taskFollowsFromTheOptions_data()
{
    QTest::addColumn<CommandLine::Task>("task");
    QTest::addColumn<int>("tab");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("pictures");
    const QSize device(800, 480);
    QTest::newRow("") << CommandLine::ShowWindow << 0 << device << QString();
    QTest::newRow("--tab 3") << CommandLine::ShowWindow << 3 << device << QString();
    QTest::newRow("--tab 99") << CommandLine::ShowWindow << 99 << device << QString();
    QTest::newRow("--size 1024x600") << CommandLine::ShowWindow << 0 << QSize(1024, 600) << QString();
    QTest::newRow("--tab=2 --size=640x400") << CommandLine::ShowWindow << 2 << QSize(640, 400) << QString();
    QTest::newRow("--select-tab 5") << CommandLine::SelectTab << 5 << device << QString();
    QTest::newRow("--select-tab 2147483647") << CommandLine::SelectTab << 2147483647 << device << QString();
    QTest::newRow("--pictures out") << CommandLine::TakePictures << 0 << device << QStringLiteral("out");
    QTest::newRow("--pictures out --size 1280x800")
        << CommandLine::TakePictures << 0 << QSize(1280, 800) << QStringLiteral("out");
    QTest::newRow("--help") << CommandLine::ShowHelp << 0 << device << QString();
    QTest::newRow("-h --tab nonsense") << CommandLine::ShowHelp << 0 << device << QString();
    QTest::newRow("--version") << CommandLine::ShowVersion << 0 << device << QString();
}

void TestSettingsCommandLine::taskFollowsFromTheOptions()
{
    QFETCH(CommandLine::Task, task);
    QFETCH(int, tab);
    QFETCH(QSize, size);
    QFETCH(QString, pictures);
    const CommandLine commandLine = read(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY2(commandLine.task == task, qPrintable(commandLine.error));
    QCOMPARE(commandLine.tab, tab);
    QCOMPARE(commandLine.size, size);
    QCOMPARE(commandLine.pictureDirectory, pictures);
}

void TestSettingsCommandLine::nonsenseIsRefusedWithOneLine_data()
{
    QTest::addColumn<QString>("error");
    QTest::newRow("--tabs 3") << QStringLiteral("Unknown option 'tabs'.");
    QTest::newRow("general") << QStringLiteral("Unexpected argument 'general'.");
    QTest::newRow("--tab") << QStringLiteral("Missing value after '--tab'.");
    QTest::newRow("--tab general") << QStringLiteral("'general' is not the number of a tab.");
    QTest::newRow("--tab -1") << QStringLiteral("'-1' is not the number of a tab.");
    QTest::newRow("--select-tab 2147483648") << QStringLiteral("'2147483648' is not the number of a tab.");
    QTest::newRow("--select-tab 1.5") << QStringLiteral("'1.5' is not the number of a tab.");
    QTest::newRow("--size 800") << QStringLiteral("'800' is not a size between 640x400 and 8192x8192.");
    QTest::newRow("--size 639x400") << QStringLiteral(
        "'639x400' is not a size between 640x400 and 8192x8192.");
    QTest::newRow("--size 640x399") << QStringLiteral(
        "'640x399' is not a size between 640x400 and 8192x8192.");
    QTest::newRow("--size 8193x400") << QStringLiteral(
        "'8193x400' is not a size between 640x400 and 8192x8192.");
    QTest::newRow("--size -800x480") << QStringLiteral(
        "'-800x480' is not a size between 640x400 and 8192x8192.");
    QTest::newRow("--pictures=") << QStringLiteral("--pictures needs a directory.");
    QTest::newRow("--select-tab 1 --pictures out")
        << QStringLiteral("--select-tab and --pictures cannot go together.");
}

void TestSettingsCommandLine::nonsenseIsRefusedWithOneLine()
{
    QFETCH(QString, error);
    const CommandLine commandLine = read(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(commandLine.task, CommandLine::Refuse);
    QCOMPARE(commandLine.error, error);
}

void TestSettingsCommandLine::windowHasTheSizeOfTheDeviceUnlessTold()
{
    QCOMPARE(CommandLine().size, QSize(800, 480));
}

void TestSettingsCommandLine::helpNamesEveryOption_data()
{
    QTest::addColumn<QString>("option");
    for (const char *option : {"--tab", "--size", "--select-tab", "--pictures", "--help", "--version"})
        QTest::newRow(option) << QString::fromLatin1(option);
}

void TestSettingsCommandLine::helpNamesEveryOption()
{
    QFETCH(QString, option);
    QVERIFY(read(QStringLiteral("--help")).help.contains(option));
}

void TestSettingsCommandLine::helpNamesEveryTab()
{
    const QString help = read(QStringLiteral("--help")).help.simplified();
    for (const char *tab : {"0 General", "1 Date & Time", "2 Networking", "3 System Updates", "4 Languages",
                            "5 Users & Passwords", "6 Printer", "7 Printer alignment", "8 Presets", "9 About",
                            "10 Printer advanced", "11 Print history"})
        QVERIFY2(help.contains(QLatin1String(tab)), tab);
}

QTEST_APPLESS_MAIN(TestSettingsCommandLine)
#include "tst_settingscommandline.moc"
