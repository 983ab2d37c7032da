// What the clock service's property changes say about network time.
#include "networktimestate.h"

#include <QtTest/QtTest>

Q_DECLARE_METATYPE(NetworkTimeState)

class TestNetworkTimeState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsReadOnlyAsABoolean_data();
    void valueIsReadOnlyAsABoolean();
    void changeIsTakenOver_data();
    void changeIsTakenOver();
};

void TestNetworkTimeState::valueIsReadOnlyAsABoolean_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<NetworkTimeState>("state");
    QTest::newRow("true") << QVariant(true) << NetworkTimeState::On;
    QTest::newRow("false") << QVariant(false) << NetworkTimeState::Off;
    QTest::newRow("nothing") << QVariant() << NetworkTimeState::Unknown;
    QTest::newRow("number") << QVariant(1) << NetworkTimeState::Unknown;
    QTest::newRow("text") << QVariant(QStringLiteral("true")) << NetworkTimeState::Unknown;
}

void TestNetworkTimeState::valueIsReadOnlyAsABoolean()
{
    QFETCH(QVariant, value);
    QFETCH(NetworkTimeState, state);
    QCOMPARE(networkTimeState(value), state);
}

void TestNetworkTimeState::changeIsTakenOver_data()
{
    QTest::addColumn<NetworkTimeState>("before");
    QTest::addColumn<QVariantMap>("changed");
    QTest::addColumn<QStringList>("invalidated");
    QTest::addColumn<NetworkTimeState>("after");
    const QString ntp = QStringLiteral("NTP");
    const QString other = QStringLiteral("NTPSynchronized");
    QTest::newRow("goes off") << NetworkTimeState::On << QVariantMap{{ntp, false}} << QStringList()
                              << NetworkTimeState::Off;
    QTest::newRow("goes on") << NetworkTimeState::Off << QVariantMap{{ntp, true}} << QStringList()
                             << NetworkTimeState::On;
    QTest::newRow("comes before the answer")
        << NetworkTimeState::Asking << QVariantMap{{ntp, false}} << QStringList() << NetworkTimeState::Off;
    QTest::newRow("another property") << NetworkTimeState::On << QVariantMap{{other, false}}
                                      << QStringList{QStringLiteral("Timezone")} << NetworkTimeState::On;
    QTest::newRow("changed without a value")
        << NetworkTimeState::On << QVariantMap() << QStringList{ntp} << NetworkTimeState::Asking;
    QTest::newRow("value and invalidated")
        << NetworkTimeState::On << QVariantMap{{ntp, false}} << QStringList{ntp} << NetworkTimeState::Off;
    QTest::newRow("nothing") << NetworkTimeState::Unknown << QVariantMap() << QStringList()
                             << NetworkTimeState::Unknown;
}

void TestNetworkTimeState::changeIsTakenOver()
{
    QFETCH(NetworkTimeState, before);
    QFETCH(QVariantMap, changed);
    QFETCH(QStringList, invalidated);
    QFETCH(NetworkTimeState, after);
    QCOMPARE(networkTimeStateAfter(before, changed, invalidated), after);
}

QTEST_APPLESS_MAIN(TestNetworkTimeState)
#include "tst_networktimestate.moc"
