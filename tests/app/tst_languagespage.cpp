// The page Languages on a whole device: what is found, stored and written for the compositor.
#include "appsession.h"
#include "settingsfile.h"

#include <QtCore/QDir>
#include <QtTest/QtTest>

/// Makes it impossible to write the compositor's file.
using Obstacle = bool (*)();
Q_DECLARE_METATYPE(Obstacle)

class TestLanguagesPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void languageIsStoredByItsCode();
    void storedLanguageIsShownAgain_data();
    void storedLanguageIsShownAgain();
    void layoutIsFoundByTypingAndStored();
    void storedLayoutIsShownAgain_data();
    void storedLayoutIsShownAgain();
    void layoutIsPickedByKeysAlone();
    void searchThatFindsNothingSaysSo();
    void cancelledPickerStoresNothing();
    void longListOpensWithFewItems();
    void listOpensAtTheStoredLayout();
    void lineSaysWhenTheLayoutIsTaken();
    void layoutThatIsNotWrittenIsReported_data();
    void layoutThatIsNotWrittenIsReported();
    void fileThatIsMissingIsMade();

private:
    QByteArray m_environment;
};

namespace {

const QString layoutChooser = QStringLiteral("keyboardLayout");
const QString environmentFile = QStringLiteral("/etc/corvanta/wayland.env");

QByteArray environmentLines()
{
    QFile file(environmentFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Takes away whatever lies at the place of the file.
void makeFree()
{
    if (QFileInfo(environmentFile).isDir())
        QVERIFY(QDir(environmentFile).removeRecursively());
    else
        QFile::remove(environmentFile);
}

void type(AppSession &app, const char *text)
{
    for (const char *letter = text; *letter; ++letter)
        QTest::keyClick(app.window(), *letter);
}

/// By typing and keys, where the search finds it first.
void chooseLayout(AppSession &app, const char *search)
{
    app.press(layoutChooser, Qt::Key_Return);
    QTRY_VERIFY(app.isVisible(QStringLiteral("keyboardLayout.search")));
    type(app, search);
    QTest::keyClick(app.window(), Qt::Key_Down);
    QTest::keyClick(app.window(), Qt::Key_Return);
    QTRY_VERIFY(!app.isVisible(QStringLiteral("keyboardLayout.search")));
}

QString warning(AppSession &app)
{
    return app.property(layoutChooser, "warning").toString();
}

QString value(AppSession &app, const QString &item)
{
    return app.property(item, "value").toString();
}

/// The entries of the picker that are made at the moment.
QList<QQuickItem *> entries(AppSession &app, const QString &name)
{
    QList<QQuickItem *> found;
    for (QQuickItem *child :
         app.property(name + QStringLiteral(".list"), "contentItem").value<QQuickItem *>()->childItems()) {
        if (child->isVisible() && child->objectName().startsWith(name + QLatin1Char('.')))
            found += child;
    }
    return found;
}

QQuickItem *entryCalled(AppSession &app, const QString &name, const QString &text)
{
    for (QQuickItem *entry : entries(app, name)) {
        if (entry->property("text").toString() == text)
            return entry;
    }
    return nullptr;
}

} // namespace

void TestLanguagesPage::initTestCase()
{
    // Only a whole device has a file of its own there.
    QVERIFY(qEnvironmentVariableIsSet("ZBVIRTUALDEVICE_CLOCK_LOG"));
    m_environment = environmentLines();
    QVERIFY(m_environment.contains("XKB_DEFAULT_LAYOUT=us\n"));
}

void TestLanguagesPage::init()
{
    SettingsFile::removeAll();
    makeFree();
    QVERIFY(QDir().mkpath(QFileInfo(environmentFile).path()));
    QFile file(environmentFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(m_environment);
}

void TestLanguagesPage::languageIsStoredByItsCode()
{
    AppSession app(4);
    QCOMPARE(value(app, QStringLiteral("language")), QStringLiteral("English (United States)"));
    app.click(QStringLiteral("language"));
    type(app, "deutsch");
    QVERIFY(entries(app, QStringLiteral("language")).isEmpty());
    for (int letter = 0; letter < 7; ++letter)
        QTest::keyClick(app.window(), Qt::Key_Backspace);
    type(app, "germ");
    QQuickItem *const german =
        entryCalled(app, QStringLiteral("language"), QStringLiteral("German (Germany)"));
    QVERIFY(german);
    app.click(german->objectName());
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=de_de\n"));
    QCOMPARE(value(app, QStringLiteral("language")), QStringLiteral("German (Germany)"));
    QCOMPARE(environmentLines(), m_environment);
}

void TestLanguagesPage::storedLanguageIsShownAgain_data()
{
    QTest::addColumn<QString>("shown");
    QTest::newRow("fr_fr") << QStringLiteral("French (France)");
    QTest::newRow("tlh_ko") << QStringLiteral("tlh_ko");
}

void TestLanguagesPage::storedLanguageIsShownAgain()
{
    QFETCH(QString, shown);
    QVERIFY(SettingsFile::write(QByteArray("[locale]\nlanguage=") + QTest::currentDataTag() + '\n'));
    AppSession app(4);
    QCOMPARE(value(app, QStringLiteral("language")), shown);
}

void TestLanguagesPage::layoutIsFoundByTypingAndStored()
{
    AppSession app(4);
    QCOMPARE(value(app, layoutChooser), QStringLiteral("Not chosen"));
    app.click(layoutChooser);
    type(app, "german no dead");
    QQuickItem *const german = entryCalled(app, layoutChooser, QStringLiteral("German (no dead keys)"));
    QVERIFY(german);
    app.click(german->objectName());
    QTRY_VERIFY(!app.isVisible(QStringLiteral("keyboardLayout.search")));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nkeyboardLayout=de(nodeadkeys)\n"));
    QVERIFY2(environmentLines().endsWith("XKB_DEFAULT_LAYOUT=de\nXKB_DEFAULT_VARIANT=nodeadkeys\n"),
             environmentLines().constData());
    QCOMPARE(value(app, layoutChooser), QStringLiteral("German (no dead keys)"));
}

void TestLanguagesPage::storedLayoutIsShownAgain_data()
{
    QTest::addColumn<QString>("shown");
    QTest::newRow("de") << QStringLiteral("German");
    QTest::newRow("de(nodeadkeys)") << QStringLiteral("German (no dead keys)");
    QTest::newRow("us(dvorak)") << QStringLiteral("English (Dvorak)");
    QTest::newRow("de(gone)") << QStringLiteral("de(gone)");
}

void TestLanguagesPage::storedLayoutIsShownAgain()
{
    QFETCH(QString, shown);
    QVERIFY(SettingsFile::write(QByteArray("[locale]\nkeyboardLayout=") + QTest::currentDataTag() + '\n'));
    AppSession app(4);
    QCOMPARE(value(app, layoutChooser), shown);
}

void TestLanguagesPage::layoutIsPickedByKeysAlone()
{
    AppSession app(4);
    chooseLayout(app, "russian");
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nkeyboardLayout=ru\n"));
    QVERIFY(environmentLines().contains("XKB_DEFAULT_LAYOUT=ru\n"));
}

void TestLanguagesPage::searchThatFindsNothingSaysSo()
{
    AppSession app(4);
    app.click(layoutChooser);
    QVERIFY(!app.isVisible(QStringLiteral("keyboardLayout.none")));
    type(app, "klingon");
    QVERIFY(app.isVisible(QStringLiteral("keyboardLayout.none")));
    QTest::keyClick(app.window(), Qt::Key_Return);
    QVERIFY(!SettingsFile::exists());
}

void TestLanguagesPage::cancelledPickerStoresNothing()
{
    AppSession app(4);
    for (const char *item : {"language", "keyboardLayout"}) {
        const QString name = QString::fromLatin1(item);
        app.click(name);
        type(app, "greek");
        app.click(name + QStringLiteral(".cancel"));
        QTRY_VERIFY(!app.isVisible(name + QStringLiteral(".search")));
        app.click(name);
        // What was typed is gone.
        QVERIFY(app.property(name + QStringLiteral(".search"), "text").toString().isEmpty());
        QTest::keyClick(app.window(), Qt::Key_Escape);
        QTRY_VERIFY(!app.isVisible(name + QStringLiteral(".search")));
    }
    QVERIFY(!SettingsFile::exists());
    QCOMPARE(environmentLines(), m_environment);
}

void TestLanguagesPage::longListOpensWithFewItems()
{
    AppSession app(4);
    app.click(layoutChooser);
    QVERIFY(app.property(QStringLiteral("keyboardLayout.list"), "count").toInt() > 500);
    const int made = entries(app, layoutChooser).size();
    QVERIFY2(made >= 6 && made < 40, qPrintable(QString::number(made)));
}

void TestLanguagesPage::listOpensAtTheStoredLayout()
{
    QVERIFY(SettingsFile::write("[locale]\nkeyboardLayout=se\n"));
    AppSession app(4);
    app.click(layoutChooser);
    const QQuickItem *const swedish = entryCalled(app, layoutChooser, QStringLiteral("Swedish"));
    QVERIFY(swedish);
    QVERIFY(swedish->property("chosen").toBool());
    QVERIFY(
        app.rectangle(QStringLiteral("keyboardLayout.list")).contains(app.rectangle(swedish->objectName())));
}

void TestLanguagesPage::lineSaysWhenTheLayoutIsTaken()
{
    AppSession app(4);
    QCOMPARE(app.property(layoutChooser, "description").toString(),
             QStringLiteral("The display takes it when the printer starts next"));
}

void TestLanguagesPage::layoutThatIsNotWrittenIsReported_data()
{
    QTest::addColumn<Obstacle>("obstruct");
    QTest::newRow("a folder in the place of the file")
        << Obstacle([] { return QDir().mkdir(environmentFile); });
    QTest::newRow("no folder for the file")
        << Obstacle([] { return QDir(QFileInfo(environmentFile).path()).removeRecursively(); });
    QTest::newRow("a line without an end") << Obstacle([] {
        QFile file(environmentFile);
        return file.open(QIODevice::WriteOnly) && file.write("XKB_DEFAULT_LAYOUT=us") > 0;
    });
}

void TestLanguagesPage::layoutThatIsNotWrittenIsReported()
{
    QFETCH(Obstacle, obstruct);
    AppSession app(4);
    chooseLayout(app, "russian");
    QCOMPARE(warning(app), QString());
    makeFree();
    QVERIFY(obstruct());
    chooseLayout(app, "german no dead");
    QCOMPARE(warning(app), QStringLiteral("The display does not get this layout."));

    init();
    chooseLayout(app, "swedish");
    QCOMPARE(warning(app), QString());
}

void TestLanguagesPage::fileThatIsMissingIsMade()
{
    AppSession app(4);
    makeFree();
    chooseLayout(app, "russian");
    QCOMPARE(environmentLines(), QByteArray("XKB_DEFAULT_LAYOUT=ru\nXKB_DEFAULT_VARIANT=\n"));
    QCOMPARE(warning(app), QString());
}

QTEST_MAIN(TestLanguagesPage)
#include "tst_languagespage.moc"
