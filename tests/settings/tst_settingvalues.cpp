// Values of every kind, written by one process and read by another: the file keeps texts as they are and
// everything else in a form that converts back.
#include "otherapplication.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <limits>
#include <memory>

namespace {

// Both stand for a value: one in a group, one at the top level. Neither is told to the daemon.
const QString keyInGroup = QStringLiteral("timezone");
const QString keyAtTopLevel = QStringLiteral("mountSharedFolder");

// In pieces, since QSettings moves the whole text for each character that it escapes.
constexpr uint pieceLength = 0x1000;

QString pieceOfTheBasicPlane(uint start)
{
    QString text;
    text.reserve(pieceLength);
    for (uint unit = start; unit < start + pieceLength; ++unit)
        text.append(QChar(ushort(unit)));
    return text;
}

QString everySupplementaryCharacterAt(uint step)
{
    QString text;
    for (uint character = 0x10000; character <= 0x10ffff; character += step) {
        text.append(QChar(QChar::highSurrogate(character)));
        text.append(QChar(QChar::lowSurrogate(character)));
    }
    return text;
}

} // namespace

class TestSettingValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void textComesBackAsItIs_data();
    void textComesBackAsItIs();
    void otherValuesComeBackConvertible_data();
    void otherValuesComeBackConvertible();
    void sameProcessReadsWhatItWrote();

private:
    void writeAndRead(const QVariant &value, const QVariant &expected);

    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<OtherApplication> m_other;
};

void TestSettingValues::initTestCase()
{
    SettingsFile::removeAll();
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_other = std::make_unique<OtherApplication>();
    QCOMPARE(m_other->construct().exception, QString());
}

void TestSettingValues::cleanupTestCase()
{
    m_other.reset();
    m_settings.reset();
    SettingsFile::removeAll();
}

void TestSettingValues::writeAndRead(const QVariant &value, const QVariant &expected)
{
    for (const QString &key : {keyInGroup, keyAtTopLevel}) {
        m_settings->setSetting(key, value);
        m_settings->setSetting(QStringLiteral("lastUpdateCheck"), QStringLiteral("not disturbed"));
        const OtherApplication::Reply reply = m_other->get(key, QStringLiteral("default"));
        QCOMPARE(reply.exception, QString());
        QCOMPARE(reply.value.userType(), expected.userType());
        QCOMPARE(reply.value, expected);
        QCOMPARE(m_other->get(QStringLiteral("lastUpdateCheck")).value,
                 QVariant(QStringLiteral("not disturbed")));
    }
}

void TestSettingValues::textComesBackAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("word") << QStringLiteral("word");
    QTest::newRow("comma") << QStringLiteral("a,b");
    QTest::newRow("comma and space") << QStringLiteral("a, b");
    QTest::newRow("comma alone") << QStringLiteral(",");
    QTest::newRow("semicolon") << QStringLiteral("a;b");
    QTest::newRow("semicolon first") << QStringLiteral("; no comment");
    QTest::newRow("hash first") << QStringLiteral("# no comment");
    QTest::newRow("equals sign") << QStringLiteral("a=b=c");
    QTest::newRow("section") << QStringLiteral("[locale]");
    QTest::newRow("line and section") << QStringLiteral("a\n[locale]\nlanguage=xx\n");
    QTest::newRow("quote") << QStringLiteral("\"");
    QTest::newRow("quoted") << QStringLiteral("\"a\" and \"b\"");
    QTest::newRow("apostrophe") << QStringLiteral("it's");
    QTest::newRow("backslash") << QStringLiteral("\\");
    QTest::newRow("backslash at the end") << QStringLiteral("a\\");
    QTest::newRow("backslash and n") << QStringLiteral("\\n");
    QTest::newRow("backslash and x") << QStringLiteral("\\x41");
    QTest::newRow("backslash and line end") << QStringLiteral("a\\\nb");
    QTest::newRow("line feed") << QStringLiteral("a\nb");
    QTest::newRow("line feed at the end") << QStringLiteral("a\n");
    QTest::newRow("carriage return") << QStringLiteral("a\rb");
    QTest::newRow("carriage return and line feed") << QStringLiteral("a\r\nb\r\n");
    QTest::newRow("tab") << QStringLiteral("a\tb");
    QTest::newRow("space first and last") << QStringLiteral("  a  ");
    QTest::newRow("spaces alone") << QStringLiteral("   ");
    QTest::newRow("NUL") << QString(QStringLiteral("a") + QChar(QChar::Null) + QStringLiteral("b"));
    QTest::newRow("NUL alone") << QString(QChar(QChar::Null));
    QTest::newRow("NUL before a digit") << QString(QChar(QChar::Null) + QStringLiteral("7"));
    QTest::newRow("control characters") << QStringLiteral("\x01\x02\x1b\x1f\x7f");
    QTest::newRow("control before a hexadecimal digit") << QStringLiteral("\x01") + QStringLiteral("f");
    QTest::newRow("percent") << QStringLiteral("%20 %s %1");
    QTest::newRow("at sign") << QStringLiteral("@");
    QTest::newRow("like a special value") << QStringLiteral("@Invalid()");
    QTest::newRow("like bytes") << QStringLiteral("@ByteArray(abc)");
    QTest::newRow("two at signs") << QStringLiteral("@@Invalid()");
    QTest::newRow("slash") << QStringLiteral("Europe/Berlin");
    QTest::newRow("shell") << QStringLiteral("$(reboot); `reboot` | reboot & ${HOME} > /etc/passwd");
    QTest::newRow("path") << QStringLiteral("../../etc/passwd");
    QTest::newRow("true") << QStringLiteral("true");
    QTest::newRow("number") << QStringLiteral("007");
    QTest::newRow("Latin-1") << QStringLiteral("\u00e4\u00f6\u00fc\u00df\u00ff");
    QTest::newRow("Chinese") << QStringLiteral("\u4f60\u597d");
    QTest::newRow("Arabic") << QStringLiteral("\u0645\u0631\u062d\u0628\u0627");
    QTest::newRow("surrogate pair") << QStringLiteral("\U0001f5a8");
    QTest::newRow("high surrogate alone") << QString(QChar(0xd83d));
    QTest::newRow("low surrogate alone") << QString(QChar(0xdda8));
    QTest::newRow("surrogates the wrong way round") << QString(QChar(0xdda8)) + QChar(0xd83d);
    QTest::newRow("byte order mark") << QString(QChar(QChar::ByteOrderMark)) + QStringLiteral("a");
    QTest::newRow("line separators") << QString(QChar(0x2028)) + QChar(0x2029) + QChar(0x85);
    for (uint start = 0; start < 0x10000; start += pieceLength)
        QTest::addRow("basic plane from %x", start) << pieceOfTheBasicPlane(start);
    QTest::newRow("through the other planes") << everySupplementaryCharacterAt(251);
    QTest::newRow("1 MB") << QString(1024 * 1024, QLatin1Char('x'));
}

void TestSettingValues::textComesBackAsItIs()
{
    QFETCH(QString, text);
    writeAndRead(text, text);
}

void TestSettingValues::otherValuesComeBackConvertible_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("expected");
    const auto text = [](const char *characters) { return QVariant(QString::fromLatin1(characters)); };
    const QString a = QStringLiteral("a");
    const QString empty = QStringLiteral("");

    QTest::newRow("true") << QVariant(true) << text("true");
    QTest::newRow("false") << QVariant(false) << text("false");
    QTest::newRow("int") << QVariant(5) << text("5");
    QTest::newRow("negative") << QVariant(-5) << text("-5");
    QTest::newRow("largest uint") << QVariant(4294967295u) << text("4294967295");
    QTest::newRow("largest") << QVariant(std::numeric_limits<qulonglong>::max())
                             << text("18446744073709551615");
    QTest::newRow("double") << QVariant(0.1) << text("0.1");
    QTest::newRow("not a number") << QVariant(qQNaN()) << text("nan");
    QTest::newRow("nothing") << QVariant() << QVariant();
    QTest::newRow("null text") << QVariant(QString()) << QVariant(empty);
    QTest::newRow("list of none") << QVariant(QStringList()) << QVariant();
    QTest::newRow("list of one") << QVariant(QStringList{a}) << QVariant(a);
    QTest::newRow("list of two") << QVariant(QStringList{a, a}) << QVariant(QStringList{a, a});
    QTest::newRow("list of empty texts")
        << QVariant(QStringList{empty, empty}) << QVariant(QStringList{empty, empty});
    const QStringList difficult{QStringLiteral("a,b"),   QStringLiteral("c\"d"), QStringLiteral("e\nf"),
                                QStringLiteral(" "),     QStringLiteral("@"),    QStringLiteral("\\"),
                                QStringLiteral("\u4f60")};
    QTest::newRow("list of difficult texts") << QVariant(difficult) << QVariant(difficult);
    QTest::newRow("list of numbers") << QVariant(QVariantList{1, 2})
                                     << QVariant(QStringList{QStringLiteral("1"), QStringLiteral("2")});
    const QByteArray bytes("\0\x01\xff,\"\\\n", 7);
    QTest::newRow("bytes") << QVariant(bytes) << QVariant(bytes);
    QTest::newRow("no bytes") << QVariant(QByteArray("")) << QVariant(QByteArray(""));
    const QVariantMap map{{QStringLiteral("a"), 1}, {QStringLiteral("b"), QStringLiteral("text")}};
    QTest::newRow("map") << QVariant(map) << QVariant(map);
    QTest::newRow("date and time") << QVariant(QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), Qt::UTC))
                                   << QVariant(QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3), Qt::UTC));
    QTest::newRow("character") << QVariant(QChar(QLatin1Char('x'))) << QVariant(QChar(QLatin1Char('x')));
}

void TestSettingValues::otherValuesComeBackConvertible()
{
    QFETCH(QVariant, value);
    QFETCH(QVariant, expected);
    writeAndRead(value, expected);
}

void TestSettingValues::sameProcessReadsWhatItWrote()
{
    m_settings->setSetting(keyInGroup, true);
    QCOMPARE(m_settings->getSetting(keyInGroup), QVariant(true));
    m_settings->setSetting(keyInGroup, QStringList{QStringLiteral("a")});
    QCOMPARE(m_settings->getSetting(keyInGroup).toStringList(), QStringList{QStringLiteral("a")});
    m_settings->setSetting(keyInGroup, QVariant());
    QVERIFY(!m_settings->getSetting(keyInGroup, 1).isValid());
}

QTEST_GUILESS_MAIN(TestSettingValues)
#include "tst_settingvalues.moc"
