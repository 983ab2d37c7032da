// Where getSetting() and setSetting() find and put a value in the settings file, what they do about other
// programs that use the file too, and what they leave alone.
#include "emissionrecorder.h"
#include "messagelog.h"
#include "otherapplication.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <memory>
#include <stdexcept>

namespace {

struct Row
{
    const char *key;
    const char *group; ///< section of the file
};

constexpr Row rows[] = {
    {"language", "locale"},
    {"units", "locale"},
    {"keyboardLayout", "locale"},
    {"brightnessLevel", "display"},
    {"dimmingInactive", "display"},
    {"powerInactive", "display"},
    {"sendAnalytics", "General"},
    {"mountSharedFolder", "General"},
    {"24Hour", "dateTime"},
    {"timezone", "dateTime"},
    {"automaticDateTime", "dateTime"},
    {"dateFormat", "dateTime"},
    {"automaticUpdateCheck", "updates"},
    {"lastUpdateCheck", "updates"},
    {"firstBootApplication", "initialization"},
    {"firstBootDefaultPage", "initialization"},
    {"lockscreenAuto", "lockscreen"},
    {"zoomLevel", "home"},
    {"appListCollapsed", "home"},
    {"doubleClickOpen", "home"},
    {"appFirstLaunchList", "home"},
};

template <typename Function> QByteArray outOfRangeText(Function function)
{
    try {
        function();
    } catch (const std::out_of_range &error) {
        return error.what();
    } catch (...) {
        return "another exception";
    }
    return "no exception";
}

QVariantMap propertiesOf(const QObject &object)
{
    QVariantMap result;
    const QMetaObject *const metaObject = object.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject->propertyCount(); ++i)
        result.insert(QString::fromLatin1(metaObject->property(i).name()),
                      metaObject->property(i).read(&object));
    return result;
}

} // namespace

class TestSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void cleanupTestCase();

    void constructionAndReadsLeaveTheFileAbsent();
    void absentKeyGivesTheDefaultUnchanged_data();
    void absentKeyGivesTheDefaultUnchanged();
    void absentKeyWithoutDefaultGivesNothing();
    void keyIsWrittenInItsGroup_data();
    void keyIsWrittenInItsGroup();
    void keyIsReadFromItsGroup_data();
    void keyIsReadFromItsGroup();
    void analyticsChoiceStandsAtTopLevel();
    void dateFormatStandsUnderDateTime();
    void timezoneIsReadAndWrittenWithoutConstantOrProperty();
    void storedEmptyTextIsNotReplacedByTheDefault();
    void foreignTextComesBackAsText_data();
    void foreignTextComesBackAsText();
    void nextReadSeesWhatAnotherProgramWrote();
    void nextReadSeesThatAnotherProgramTookTheFileAway();
    void writeKeepsWhatAnotherProgramWroteMeanwhile();
    void writeKeepsForeignSectionsAndKeys();
    void anotherApplicationReadsWhatWasSetAtOnce();
    void lastWriteWins();
    void writingTheSameValueAgainKeepsIt();
    void organisationsFileSuppliesAnAbsentKeyAndIsNeverWritten();
    void unknownKeyIsOutOfRangeAndTouchesNothing_data();
    void unknownKeyIsOutOfRangeAndTouchesNothing();
    void settingEmitsNothingAndKeepsTheProperties_data();
    void settingEmitsNothingAndKeepsTheProperties();
    void bothFormsWorkThroughTheMetaObject();

private:
    static void addRows();
    std::unique_ptr<MessageLog> m_log;
};

void TestSettingsFile::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
}

void TestSettingsFile::cleanup()
{
    m_log.reset();
}

void TestSettingsFile::cleanupTestCase()
{
    SettingsFile::removeAll();
}

void TestSettingsFile::addRows()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("section");
    for (const Row &row : rows)
        QTest::newRow(row.key) << QString::fromLatin1(row.key) << QByteArray(row.group);
}

void TestSettingsFile::constructionAndReadsLeaveTheFileAbsent()
{
    {
        ZBSettingsMain settings(nullptr, false);
        for (const Row &row : rows)
            settings.getSetting(QString::fromLatin1(row.key), 1);
    }
    QVERIFY(!SettingsFile::exists());
    QVERIFY(!QFileInfo::exists(SettingsFile::folder()));
}

void TestSettingsFile::absentKeyGivesTheDefaultUnchanged_data()
{
    QTest::addColumn<QVariant>("defaultValue");
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("false") << QVariant(false);
    QTest::newRow("int") << QVariant(7);
    QTest::newRow("uint") << QVariant(7u);
    QTest::newRow("double") << QVariant(0.5);
    QTest::newRow("text") << QVariant(QStringLiteral("MM/dd/yy"));
    QTest::newRow("empty text") << QVariant(QStringLiteral(""));
    QTest::newRow("null text") << QVariant(QString());
    QTest::newRow("list of texts") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
    QTest::newRow("empty list of texts") << QVariant(QStringList());
    QTest::newRow("bytes") << QVariant(QByteArray("\0\xff", 2));
    QTest::newRow("date") << QVariant(QDate(2024, 2, 29));
    QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("a"), 1}});
    QTest::newRow("nothing") << QVariant();
}

void TestSettingsFile::absentKeyGivesTheDefaultUnchanged()
{
    QFETCH(QVariant, defaultValue);
    ZBSettingsMain settings(nullptr, false);
    for (const char *const key : {"sendAnalytics", "dateFormat"}) {
        const QVariant value = settings.getSetting(QString::fromLatin1(key), defaultValue);
        QCOMPARE(value.userType(), defaultValue.userType());
        QCOMPARE(value.isNull(), defaultValue.isNull());
        QCOMPARE(value, defaultValue);
    }
}

void TestSettingsFile::absentKeyWithoutDefaultGivesNothing()
{
    ZBSettingsMain settings(nullptr, false);
    for (const Row &row : rows)
        QVERIFY2(!settings.getSetting(QString::fromLatin1(row.key)).isValid(), row.key);
}

void TestSettingsFile::keyIsWrittenInItsGroup_data()
{
    addRows();
}

void TestSettingsFile::keyIsWrittenInItsGroup()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, section);
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(key, QStringLiteral("x1"));
    QCOMPARE(SettingsFile::content(), "[" + section + "]\n" + key.toLatin1() + "=x1\n");
}

void TestSettingsFile::keyIsReadFromItsGroup_data()
{
    addRows();
}

void TestSettingsFile::keyIsReadFromItsGroup()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, section);
    QByteArray everywhere;
    for (const char *const group : {"General", "locale", "display", "privacy", "dateTime", "updates",
                                    "initialization", "lockscreen", "home", "other"})
        everywhere += QByteArray("[") + group + "]\n" + key.toLatin1() + "=in " + group + "\n";
    QVERIFY(SettingsFile::write(everywhere));

    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getSetting(key), QVariant(QString::fromLatin1("in " + section)));
    QCOMPARE(settings.getSetting(key, QStringLiteral("default")),
             QVariant(QString::fromLatin1("in " + section)));
}

void TestSettingsFile::analyticsChoiceStandsAtTopLevel()
{
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getSetting(QStringLiteral("sendAnalytics"), true), QVariant(true));
    settings.setSetting(QStringLiteral("sendAnalytics"), false);
    QCOMPARE(SettingsFile::content(), QByteArray("[General]\nsendAnalytics=false\n"));
    QVERIFY(!SettingsFile::content().contains("[privacy]"));
    QCOMPARE(settings.getSetting(QStringLiteral("sendAnalytics"), true).toBool(), false);
}

void TestSettingsFile::dateFormatStandsUnderDateTime()
{
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getSetting(QStringLiteral("dateFormat"), QStringLiteral("MM/dd/yy")),
             QVariant(QStringLiteral("MM/dd/yy")));
    settings.setSetting(QStringLiteral("dateFormat"), QStringLiteral("dd.MM.yyyy"));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\ndateFormat=dd.MM.yyyy\n"));
    QCOMPARE(settings.getSetting(QStringLiteral("dateFormat"), QStringLiteral("MM/dd/yy")),
             QVariant(QStringLiteral("dd.MM.yyyy")));
}

void TestSettingsFile::timezoneIsReadAndWrittenWithoutConstantOrProperty()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(!settings.getSetting(QStringLiteral("timezone")).isValid());
    settings.setSetting(QStringLiteral("timezone"), QStringLiteral("Europe/Berlin"));
    QCOMPARE(settings.getSetting(QStringLiteral("timezone")), QVariant(QStringLiteral("Europe/Berlin")));
    QCOMPARE(SettingsFile::content(), QByteArray("[dateTime]\ntimezone=Europe/Berlin\n"));

    const QVariantMap properties = propertiesOf(settings);
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        QVERIFY2(!property.key().contains(QLatin1String("timezone"), Qt::CaseInsensitive),
                 qPrintable(property.key()));
        QVERIFY2(property.value().toString() != QLatin1String("timezone"), qPrintable(property.key()));
    }
}

void TestSettingsFile::storedEmptyTextIsNotReplacedByTheDefault()
{
    QVERIFY(SettingsFile::write("[dateTime]\ndateFormat=\n"));
    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.getSetting(QStringLiteral("dateFormat"), QStringLiteral("MM/dd/yy")),
             QVariant(QString()));
}

void TestSettingsFile::foreignTextComesBackAsText_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("bool") << QByteArray("true") << QVariant(QStringLiteral("true"));
    QTest::newRow("number") << QByteArray("3") << QVariant(QStringLiteral("3"));
    QTest::newRow("text") << QByteArray("some text") << QVariant(QStringLiteral("some text"));
    QTest::newRow("quoted") << QByteArray("\"a, b\"") << QVariant(QStringLiteral("a, b"));
    QTest::newRow("list") << QByteArray("a, b")
                          << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
    QTest::newRow("nothing") << QByteArray("@Invalid()") << QVariant();
}

void TestSettingsFile::foreignTextComesBackAsText()
{
    QFETCH(QByteArray, stored);
    QFETCH(QVariant, value);
    QVERIFY(SettingsFile::write("[home]\nzoomLevel=" + stored + "\n"));
    ZBSettingsMain settings(nullptr, false);
    const QVariant read = settings.getSetting(QStringLiteral("zoomLevel"), 2);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
}

void TestSettingsFile::nextReadSeesWhatAnotherProgramWrote()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(SettingsFile::write("[locale]\nlanguage=de_de\n"));
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QStringLiteral("de_de")));
    QVERIFY(SettingsFile::write("[locale]\nlanguage=fr_fr\n"));
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QStringLiteral("fr_fr")));
    QVERIFY(SettingsFile::write("[locale]\nlanguage=es_es\nunits=1\n"));
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QStringLiteral("es_es")));
    QCOMPARE(settings.getSetting(QStringLiteral("units")), QVariant(QStringLiteral("1")));
    QCOMPARE(settings.settingLanguage(), QString());
}

void TestSettingsFile::nextReadSeesThatAnotherProgramTookTheFileAway()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("language"), QStringLiteral("de_de"));
    QCOMPARE(settings.getSetting(QStringLiteral("language")), QVariant(QStringLiteral("de_de")));
    SettingsFile::removeAll();
    QCOMPARE(settings.getSetting(QStringLiteral("language"), 1), QVariant(1));
    settings.setSetting(QStringLiteral("units"), 1);
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nunits=1\n"));
}

void TestSettingsFile::writeKeepsWhatAnotherProgramWroteMeanwhile()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("units"), 1);
    QVERIFY(SettingsFile::write("[locale]\nunits=0\nlanguage=de_de\n"));
    settings.setSetting(QStringLiteral("keyboardLayout"), QStringLiteral("de"));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nkeyboardLayout=de\nlanguage=de_de\nunits=0\n"));
}

void TestSettingsFile::writeKeepsForeignSectionsAndKeys()
{
    const QByteArray foreign = "[%General]\n"
                               "a=under a group that is called General\n"
                               "\n"
                               "[Another%20Program]\n"
                               "Key=value\n"
                               "key=another value\n"
                               "nested\\deeper\\key=\"quoted; with = and , and \\\"quotes\\\"\"\n"
                               "list=a, \"b,c\", d\n"
                               "bytes=@ByteArray(\\0\\x1\\xff)\n"
                               "nothing=@Invalid()\n"
                               "unicode=\\x4f60\\x597d\n"
                               "\n"
                               "[privacy]\n"
                               "sendAnalytics=another program's\n";
    QVERIFY(SettingsFile::write(foreign));
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("sendAnalytics"), false);
    settings.setSetting(QStringLiteral("units"), 1);

    const QList<QByteArray> written = SettingsFile::content().split('\n');
    for (const QByteArray &line : foreign.split('\n'))
        QVERIFY2(written.contains(line), line.constData());
    QCOMPARE(SettingsFile::content().left(30), QByteArray("[General]\nsendAnalytics=false\n\n").left(30));
    QVERIFY(SettingsFile::content().contains("[locale]\nunits=1\n"));
}

void TestSettingsFile::anotherApplicationReadsWhatWasSetAtOnce()
{
    OtherApplication other;
    QVERIFY(other.construct().exception.isEmpty());
    ZBSettingsMain settings(nullptr, false);
    for (int i = 0; i < 50; ++i) {
        const QString text = QStringLiteral("value %1").arg(i, 3);
        settings.setSetting(QStringLiteral("lastUpdateCheck"), text);
        QCOMPARE(other.get(QStringLiteral("lastUpdateCheck")).value, QVariant(text));
        other.set(QStringLiteral("timezone"), text);
        QCOMPARE(settings.getSetting(QStringLiteral("timezone")), QVariant(text));
    }
    QVERIFY(other.isRunning());
}

void TestSettingsFile::lastWriteWins()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("zoomLevel"), 1);
    settings.setSetting(QStringLiteral("zoomLevel"), 3);
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nzoomLevel=3\n"));
}

void TestSettingsFile::writingTheSameValueAgainKeepsIt()
{
    ZBSettingsMain settings(nullptr, false);
    settings.setSetting(QStringLiteral("zoomLevel"), 3);
    settings.setSetting(QStringLiteral("zoomLevel"), 3);
    QCOMPARE(SettingsFile::content(), QByteArray("[home]\nzoomLevel=3\n"));
}

// The store looks at the organisation's own file too when the application's file lacks the key.
void TestSettingsFile::organisationsFileSuppliesAnAbsentKeyAndIsNeverWritten()
{
    const QString fileName = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Corvanta.ini");
    const QByteArray content = "[locale]\nlanguage=de_de\nunits=1\n";
    QFile file(fileName);
    const auto removal = qScopeGuard([&fileName] { QFile::remove(fileName); });
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    file.close();

    ZBSettingsMain settings(nullptr, false);
    QCOMPARE(settings.settingLanguage(), QStringLiteral("de_de"));
    QCOMPARE(settings.getSetting(QStringLiteral("language"), 1), QVariant(QStringLiteral("de_de")));
    settings.setSetting(QStringLiteral("language"), QStringLiteral("fr_fr"));
    QCOMPARE(settings.getSetting(QStringLiteral("language"), 1), QVariant(QStringLiteral("fr_fr")));
    QCOMPARE(settings.getSetting(QStringLiteral("units"), 0), QVariant(QStringLiteral("1")));
    QCOMPARE(SettingsFile::content(), QByteArray("[locale]\nlanguage=fr_fr\n"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void TestSettingsFile::unknownKeyIsOutOfRangeAndTouchesNothing_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("content");
    const QByteArray some = "[locale]\nunits=1\n";
    for (const QByteArray &content : {QByteArray(), some}) {
        const QByteArray suffix = content.isEmpty() ? ", no file" : ", with a file";
        QTest::newRow("no such key" + suffix) << QStringLiteral("nonsense") << content;
        QTest::newRow("empty" + suffix) << QString() << content;
        QTest::newRow("capital letter" + suffix) << QStringLiteral("Units") << content;
        QTest::newRow("capital letter in the list's key" + suffix)
            << QStringLiteral("AppFirstLaunchList") << content;
        QTest::newRow("capital letter in a notified key" + suffix)
            << QStringLiteral("BrightnessLevel") << content;
        QTest::newRow("with the group" + suffix) << QStringLiteral("locale/units") << content;
        QTest::newRow("key and NUL" + suffix)
            << QString(QStringLiteral("units") + QChar(QChar::Null)) << content;
        QTest::newRow("not ASCII" + suffix) << QStringLiteral("\u0443nits") << content;
    }
}

void TestSettingsFile::unknownKeyIsOutOfRangeAndTouchesNothing()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, content);
    if (!content.isEmpty())
        QVERIFY(SettingsFile::write(content));
    ZBSettingsMain settings(nullptr, false);
    const QVariantMap before = propertiesOf(settings);
    const EmissionRecorder recorder(&settings);
    m_log->clear();

    QCOMPARE(outOfRangeText([&] { settings.getSetting(key); }), QByteArray("map::at"));
    QCOMPARE(outOfRangeText([&] { settings.getSetting(key, 1); }), QByteArray("map::at"));
    QCOMPARE(outOfRangeText([&] { settings.setSetting(key, 1); }), QByteArray("map::at"));

    QCOMPARE(SettingsFile::exists(), !content.isEmpty());
    QCOMPARE(SettingsFile::content(), content);
    QCOMPARE(QFileInfo::exists(SettingsFile::folder()), !content.isEmpty());
    QCOMPARE(recorder.names(), QStringList());
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(propertiesOf(settings), before);

    // Nothing of it is left to be written later.
    settings.setSetting(QStringLiteral("language"), QStringLiteral("x"));
    QCOMPARE(SettingsFile::content(),
             content.isEmpty() ? QByteArray("[locale]\nlanguage=x\n")
                               : QByteArray("[locale]\nlanguage=x\nunits=1\n"));
}

void TestSettingsFile::settingEmitsNothingAndKeepsTheProperties_data()
{
    addRows();
}

void TestSettingsFile::settingEmitsNothingAndKeepsTheProperties()
{
    QFETCH(QString, key);
    ZBSettingsMain settings(nullptr, false);
    QVariantMap before = propertiesOf(settings);
    QCOMPARE(before.size(), 28 + 23);
    EmissionRecorder recorder(&settings);
    settings.setSetting(key, QStringLiteral("5"));
    settings.setSetting(key, QStringLiteral("6"));
    QCoreApplication::processEvents();

    if (key == QLatin1String("appFirstLaunchList")) {
        const QString name = QStringLiteral("settingFirstLaunchAppListChanged");
        QCOMPARE(recorder.names(), QStringList({name, name}));
        before[QStringLiteral("settingFirstLaunchAppList")] =
            QStringList{QStringLiteral("5"), QStringLiteral("6")};
    } else {
        QCOMPARE(recorder.names(), QStringList());
    }
    QCOMPARE(propertiesOf(settings), before);
}

// QML calls slots by name, with and without the default.
void TestSettingsFile::bothFormsWorkThroughTheMetaObject()
{
    ZBSettingsMain settings(nullptr, false);
    QVERIFY(QMetaObject::invokeMethod(&settings, "setSetting", Q_ARG(QString, QStringLiteral("units")),
                                      Q_ARG(QVariant, QVariant(1))));
    QVariant value;
    QVERIFY(QMetaObject::invokeMethod(&settings, "getSetting", Q_RETURN_ARG(QVariant, value),
                                      Q_ARG(QString, QStringLiteral("units"))));
    QCOMPARE(value.toInt(), 1);
    QVERIFY(QMetaObject::invokeMethod(&settings, "getSetting", Q_RETURN_ARG(QVariant, value),
                                      Q_ARG(QString, QStringLiteral("language"))));
    QVERIFY(!value.isValid());
    QVERIFY(QMetaObject::invokeMethod(&settings, "getSetting", Q_RETURN_ARG(QVariant, value),
                                      Q_ARG(QString, QStringLiteral("language")),
                                      Q_ARG(QVariant, QVariant(9))));
    QCOMPARE(value, QVariant(9));
}

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
