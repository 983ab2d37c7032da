// What the compositor's environment file means to whoever starts the compositor.
#include "environmentfile.h"

#include <QtTest/QtTest>

class TestEnvironmentFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesBecomeVariables_data();
    void linesBecomeVariables();
    void variablesOfTheBaseAreKeptAndReplaced();
};

void TestEnvironmentFile::linesBecomeVariables_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("variables");
    const auto row = [](const char *name, const char *content, const QStringList &variables) {
        QTest::newRow(name) << QByteArray(content) << variables;
    };
    row("nothing", "", {});
    row("one", "A=1\n", {QStringLiteral("A=1")});
    row("no last newline", "A=1\nB=2", {QStringLiteral("A=1"), QStringLiteral("B=2")});
    row("empty value", "A=\n", {QStringLiteral("A=")});
    row("the last one counts", "A=1\nA=2\n", {QStringLiteral("A=2")});
    row("carriage return", "A=1\r\n", {QStringLiteral("A=1")});
    row("comments", "#A=1\n;B=2\n", {});
    row("no equals sign", "A\n", {});
    row("no name", "=1\n", {});
    row("equals sign in the value", "A=b=c\n", {QStringLiteral("A=b=c")});
}

void TestEnvironmentFile::linesBecomeVariables()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, variables);
    QStringList found = withVariables(QProcessEnvironment(), content).toStringList();
    found.sort();
    QCOMPARE(found, variables);
}

void TestEnvironmentFile::variablesOfTheBaseAreKeptAndReplaced()
{
    QProcessEnvironment base;
    base.insert(QStringLiteral("KEPT"), QStringLiteral("1"));
    base.insert(QStringLiteral("REPLACED"), QStringLiteral("2"));
    const QProcessEnvironment environment = withVariables(base, "REPLACED=3\n");
    QCOMPARE(environment.value(QStringLiteral("KEPT")), QStringLiteral("1"));
    QCOMPARE(environment.value(QStringLiteral("REPLACED")), QStringLiteral("3"));
}

QTEST_GUILESS_MAIN(TestEnvironmentFile)
#include "tst_environmentfile.moc"
