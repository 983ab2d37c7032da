// The reset of the supply calibration: which values are deleted, and by which processes.
#include "emissionrecorder.h"
#include "filebytes.h"
#include "messagelog.h"
#include "patience.h"
#include "recordingtools.h"
#include "settingsfile.h"
#include "zbsettingsmain.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <memory>
#include <unistd.h>

namespace {
const QString tool = QStringLiteral("fw_setenv");
const QList<QStringList> threeDeletions{{tool, QStringLiteral("supplyTrans")},
                                        {tool, QStringLiteral("cutterTrans")},
                                        {tool, QStringLiteral("supplyRefl")}};
} // namespace

class TestCalibration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void calibrationResetDeletesThreeOfFive();
    void processesAreStartedInOrderWithoutWaiting();
    void everyResetStartsThreeMore();
    void processesAreDetached();
    void processesOutliveTheSettings();
    void resetReturnsAtOnce_data();
    void resetReturnsAtOnce();
    void nothingIsStoredEmittedOrLogged();

private:
    std::unique_ptr<RecordingTools> m_tools;
    std::unique_ptr<ZBSettingsMain> m_settings;
    std::unique_ptr<MessageLog> m_log;
};

void TestCalibration::init()
{
    SettingsFile::removeAll();
    m_tools = std::make_unique<RecordingTools>();
    QVERIFY(m_tools->isReady());
    m_settings = std::make_unique<ZBSettingsMain>(nullptr, false);
    m_log = std::make_unique<MessageLog>();
}

void TestCalibration::cleanup()
{
    m_tools->letGo();
    m_settings.reset();
    m_log.reset();
    m_tools.reset();
    SettingsFile::removeAll();
}

void TestCalibration::calibrationResetDeletesThreeOfFive()
{
    m_settings->resetSupplyCalibration();
    QVERIFY(m_tools->waitForRuns(3));
    QCOMPARE(m_tools->commands(), threeDeletions);

    // What a late fourth would be seen by: it can only start after the call.
    m_settings->getAboutInfo(0);
    QCOMPARE(m_tools->runs().size(), 4);
    QCOMPARE(m_tools->runs().last().program, QStringLiteral("fw_printenv"));
}

void TestCalibration::processesAreStartedInOrderWithoutWaiting()
{
    m_tools->setSteps(tool, {RecordingTools::stay()});
    m_settings->resetSupplyCalibration();
    QVERIFY(m_tools->waitForRuns(3));
    QCOMPARE(m_tools->commands(), threeDeletions);
}

void TestCalibration::everyResetStartsThreeMore()
{
    m_tools->setSteps(tool, {RecordingTools::stay()});
    m_settings->resetSupplyCalibration();
    m_settings->resetSupplyCalibration();
    QVERIFY(m_tools->waitForRuns(6));
    QCOMPARE(m_tools->commands(), threeDeletions + threeDeletions);
}

void TestCalibration::processesAreDetached()
{
    m_tools->setSteps(tool, {RecordingTools::stay()});
    const int children = m_settings->children().size();
    m_settings->resetSupplyCalibration();
    QVERIFY(m_tools->waitForRuns(3));
    QCOMPARE(m_settings->children().size(), children);
    const QVector<RecordingTools::Run> runs = m_tools->runs();
    for (const RecordingTools::Run &run : runs) {
        const QByteArray text = FileBytes::read(QStringLiteral("/proc/%1/stat").arg(run.processId));
        QVERIFY(!text.isEmpty());
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        QVERIFY(fields.at(1).toLongLong() != getpid());
    }
}

void TestCalibration::processesOutliveTheSettings()
{
    m_tools->setSteps(tool, {RecordingTools::stay()});
    m_settings->resetSupplyCalibration();
    m_settings.reset();
    QVERIFY(m_tools->waitForRuns(3));
    const QVector<RecordingTools::Run> runs = m_tools->runs();
    for (const RecordingTools::Run &run : runs)
        QVERIFY(QFileInfo::exists(QStringLiteral("/proc/%1").arg(run.processId)));
}

void TestCalibration::resetReturnsAtOnce_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *const fault : {"none", "missing", "not a program", "hanging", "failing", "crashing"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

void TestCalibration::resetReturnsAtOnce()
{
    QFETCH(QString, fault);
    const bool isStarted = fault != QLatin1String("missing") && fault != QLatin1String("not a program");
    int runs = 0;
    if (fault == QLatin1String("missing"))
        m_tools->remove(tool);
    else if (fault == QLatin1String("not a program"))
        m_tools->breakProgram(tool);
    else if (fault == QLatin1String("hanging"))
        m_tools->setSteps(tool, {RecordingTools::stay()});
    else if (fault == QLatin1String("failing"))
        m_tools->setSteps(tool, {RecordingTools::exitWith(1)});
    else if (fault == QLatin1String("crashing"))
        m_tools->setSteps(tool, {RecordingTools::crash()});
    QVERIFY(m_tools->isReady());
    const auto attempt = [&] {
        runs += 3;
        QElapsedTimer timer;
        timer.start();
        m_settings->resetSupplyCalibration();
        return timer.elapsed();
    };
    const QByteArray complaint = complaintAbout(attempt, threeDetachedStarts);
    QVERIFY2(complaint.isEmpty(), complaint.constData());
    if (isStarted)
        QVERIFY(m_tools->waitForRuns(runs));
    QCOMPARE(m_log->texts(), QStringList());
}

void TestCalibration::nothingIsStoredEmittedOrLogged()
{
    const EmissionRecorder recorder(m_settings.get());
    m_settings->resetSupplyCalibration();
    QVERIFY(m_tools->waitForRuns(3));
    m_tools->remove(tool);
    m_settings->resetSupplyCalibration();
    QCoreApplication::processEvents();
    QCOMPARE(m_log->texts(), QStringList());
    QCOMPARE(recorder.names(), QStringList());
    QVERIFY(!SettingsFile::exists());
}

QTEST_GUILESS_MAIN(TestCalibration)
#include "tst_calibration.moc"
