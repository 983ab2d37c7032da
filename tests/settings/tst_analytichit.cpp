// The event that sendAnalyticHit() hands to the analytics library. This program has an AnalyticsLibrary of
// its own, which stands before the device's: that it is reached shows too that the maker's library can take
// the place of ours.
#include "analyticslibrary.h"
#include "emissionrecorder.h"
#include "messagelog.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtTest/QtTest>

#include <memory>

namespace {

struct Hit
{
    int type;
    QJsonObject object;
};

QVector<Hit> hits;

} // namespace

void AnalyticsLibrary::sendAnalyticHit(AnalyticsLibrary::AnalyticHitType type, QJsonObject hit)
{
    hits.append({int(type), hit});
}

class TestAnalyticHit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void hitHasFourTextsAndTypeSix_data();
    void hitHasFourTextsAndTypeSix();
    void sessionIdGoesWithEveryLaterHit();
    void choiceOfTheUserIsLeftToTheCaller();
    void hitIsSentOnRequestOnly();
    void sendingReportsNothing();

private:
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ZBSettingsMain> m_settings;
};

void TestAnalyticHit::init()
{
    SettingsFile::removeAll();
    m_log = std::make_unique<MessageLog>();
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    hits.clear();
}

void TestAnalyticHit::cleanup()
{
    m_settings.reset();
    m_log.reset();
    SettingsFile::removeAll();
}

void TestAnalyticHit::hitHasFourTextsAndTypeSix_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    const QString zoomLevel = QStringLiteral("zoomLevel");
    QTest::newRow("int") << zoomLevel << QVariant(3) << QStringLiteral("3");
    QTest::newRow("negative") << zoomLevel << QVariant(-3) << QStringLiteral("-3");
    QTest::newRow("uint") << zoomLevel << QVariant(3u) << QStringLiteral("3");
    QTest::newRow("true") << zoomLevel << QVariant(true) << QStringLiteral("true");
    QTest::newRow("false") << zoomLevel << QVariant(false) << QStringLiteral("false");
    QTest::newRow("double") << zoomLevel << QVariant(0.5) << QStringLiteral("0.5");
    QTest::newRow("text") << zoomLevel << QVariant(QStringLiteral("a \"b\"\n\u4f60"))
                          << QStringLiteral("a \"b\"\n\u4f60");
    QTest::newRow("empty text") << zoomLevel << QVariant(QStringLiteral("")) << QString();
    QTest::newRow("nothing") << zoomLevel << QVariant() << QString();
    QTest::newRow("list of one") << zoomLevel << QVariant(QStringList{QStringLiteral("A")})
                                 << QStringLiteral("A");
    QTest::newRow("list of two") << zoomLevel
                                 << QVariant(QStringList{QStringLiteral("A"), QStringLiteral("B")})
                                 << QString();
    QTest::newRow("name outside the schema")
        << QStringLiteral("no such setting") << QVariant(1) << QStringLiteral("1");
    QTest::newRow("empty name") << QString() << QVariant(1) << QStringLiteral("1");
}

void TestAnalyticHit::hitHasFourTextsAndTypeSix()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    m_settings->sendAnalyticHit(name, value);
    QCOMPARE(hits.size(), 1);
    QCOMPARE(hits.first().type, 6);
    const QJsonObject object = hits.first().object;
    QCOMPARE(object.keys(),
             QStringList({QStringLiteral("eventType"), QStringLiteral("newValue"),
                          QStringLiteral("sessionId"), QStringLiteral("settingName")}));
    for (const QJsonValue member : object)
        QVERIFY(member.isString());
    QCOMPARE(object.value(QStringLiteral("settingName")).toString(), name);
    QCOMPARE(object.value(QStringLiteral("newValue")).toString(), text);
    QCOMPARE(object.value(QStringLiteral("eventType")).toString(), QStringLiteral("Setting_Change"));
    QCOMPARE(object.value(QStringLiteral("sessionId")).toString(), QString());
}

void TestAnalyticHit::sessionIdGoesWithEveryLaterHit()
{
    m_settings->setAnalyticsSessionId(QStringLiteral("session 1"));
    m_settings->sendAnalyticHit(QStringLiteral("units"), 1);
    m_settings->sendAnalyticHit(QStringLiteral("units"), 0);
    m_settings->setAnalyticsSessionId(QStringLiteral("session 2"));
    m_settings->sendAnalyticHit(QStringLiteral("units"), 1);
    m_settings->setAnalyticsSessionId(QString());
    m_settings->sendAnalyticHit(QStringLiteral("units"), 1);
    QStringList ids;
    for (const Hit &hit : qAsConst(hits))
        ids.append(hit.object.value(QStringLiteral("sessionId")).toString(QStringLiteral("absent")));
    QCOMPARE(ids,
             QStringList({QStringLiteral("session 1"), QStringLiteral("session 1"),
                          QStringLiteral("session 2"), QString()}));
}

void TestAnalyticHit::choiceOfTheUserIsLeftToTheCaller()
{
    m_settings->setSetting(QStringLiteral("sendAnalytics"), false);
    m_settings->sendAnalyticHit(QStringLiteral("units"), 1);
    QCOMPARE(hits.size(), 1);
    const auto refusing = std::make_unique<ZBSettingsMain>(nullptr, false);
    QCOMPARE(refusing->settingPrivacyAnalytics(), false);
    refusing->sendAnalyticHit(QStringLiteral("units"), 1);
    QCOMPARE(hits.size(), 2);
}

void TestAnalyticHit::hitIsSentOnRequestOnly()
{
    m_settings->setSetting(QStringLiteral("sendAnalytics"), true);
    m_settings->setSetting(QStringLiteral("units"), 1);
    m_settings->setSetting(QStringLiteral("appFirstLaunchList"), QStringLiteral("A"));
    m_settings->getSetting(QStringLiteral("units"));
    QCOMPARE(hits.size(), 0);
}

void TestAnalyticHit::sendingReportsNothing()
{
    const EmissionRecorder recorder(m_settings.get());
    m_log->clear();
    m_settings->sendAnalyticHit(QStringLiteral("units"), 1);
    QVERIFY(QMetaObject::invokeMethod(m_settings.get(), "sendAnalyticHit",
                                      Q_ARG(QString, QStringLiteral("units")), Q_ARG(QVariant, QVariant(0))));
    QCOMPARE(hits.size(), 2);
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestAnalyticHit)
#include "tst_analytichit.moc"
