// The keyboard that a person chooses, in a real compositor started from the environment file: what a client
// receives.
#include "environmentfile.h"
#include "keyboardtrial.h"

#include <zbsettingsmain.h>

#include <QtTest/QtTest>

namespace {

// X key codes of what a US keyboard has as y, ; and q.
const QStringList keys{QStringLiteral("29"), QStringLiteral("47"), QStringLiteral("24")};

} // namespace

class TestKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void chosenLayoutIsWhatAClientReceives_data();
    void chosenLayoutIsWhatAClientReceives();
    void layoutOutsideTheListLeavesAKeyboardThatTypesNothing();

private:
    QByteArray fileContent() const;
    void choose(const QString &name);

    ZBSettingsMain m_settings{nullptr, false};
};

void TestKeyboard::initTestCase()
{
    for (const char *program : {"sway", "Xvfb", "xdotool"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(QLatin1String(program))));
    }
}

QByteArray TestKeyboard::fileContent() const
{
    QFile file(QString::fromLatin1(waylandEnvironmentFile));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestKeyboard::choose(const QString &name)
{
    const int index = m_settings.keyboardLanguagesComboBoxModel().indexOf(name);
    QVERIFY2(index >= 0, qPrintable(name + QStringLiteral(" is not in the list")));
    m_settings.setKeyboardLanguage(index);
}

void TestKeyboard::chosenLayoutIsWhatAClientReceives_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("received");
    const auto row = [](const char *name, const char *layout, const char *variant, const char *received) {
        QTest::newRow(name) << QString::fromUtf8(name)
                            << QByteArray("XKB_DEFAULT_LAYOUT=") + layout + "\nXKB_DEFAULT_VARIANT=" + variant
                + '\n' << QString::fromUtf8(received);
    };
    row("English (US)", "us", "", "y;q");
    row("German", "de", "", "zöq");
    row("French", "fr", "", "yma");
    row("Russian", "ru", "", "нжй");
    row("Hebrew", "il", "", "טף/");
    row("Arabic", "ara", "", "غكض");
    row("English (Dvorak)", "us", "dvorak", "fs'");
    row("German (Neo 2)", "de", "neo", "kdx");
    row("German (Switzerland)", "ch", "", "zöq");
}

void TestKeyboard::chosenLayoutIsWhatAClientReceives()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, lines);
    QFETCH(QString, received);
    choose(name);
    if (QTest::currentTestFailed())
        return;
    QVERIFY2(fileContent().endsWith(lines), fileContent().constData());

    KeyboardTrial trial(QStringLiteral(ZB_TEXT_FIELD));
    const QString complaint = trial.start(fileContent());
    QVERIFY2(complaint.isEmpty(), qPrintable(complaint));
    QCOMPARE(trial.type(keys), QString());
    QCOMPARE(trial.typed().join(QString()), received);
}

// Not a keyboard with the compositor's default: two empty values are a layout without any key.
void TestKeyboard::layoutOutsideTheListLeavesAKeyboardThatTypesNothing()
{
    m_settings.setKeyboardLanguage(-1);
    KeyboardTrial trial(QStringLiteral(ZB_TEXT_FIELD));
    const QString complaint = trial.start(fileContent());
    QVERIFY2(complaint.isEmpty(), qPrintable(complaint));
    QCOMPARE(trial.type(keys), QString());
    QCOMPARE(trial.typed(), (QStringList{QString(), QString(), QString()}));
}

QTEST_GUILESS_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
