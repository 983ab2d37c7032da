// The stations of the tour that print: print options, presets and the test page. What arrives at the printer
// is compared with what the print system's own tools say.
#include "picturetour.h"

#include "printjob.h"
#include "tourreading.h"
#include "waiting.h"

#include <zbsettingsqmlenums.h>

#include <QtCore/QFile>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTemporaryFile>
#include <QtQuick/QQuickItem>

#include <algorithm>

namespace {

constexpr int printMilliseconds = 20000;
constexpr int feedSteps = 2;

/// For supplies of 4.1 inches.
QString testPage()
{
    return QStringLiteral("/usr/share/data/Corvanta/TestPages/BrackenXL/testpage_6x6.tavo");
}

using Texts = QMap<QString, QString>;

/// Options of the queue as lpoptions names them, all other than those of the preset.
const Texts &changedOptions()
{
    static const Texts options = {{QStringLiteral("orientation-requested"), QStringLiteral("4")},
                                  {QStringLiteral("MirrorPrint"), QStringLiteral("False")},
                                  {QStringLiteral("NegativePrint"), QStringLiteral("True")},
                                  {QStringLiteral("Overprint"), QStringLiteral("True")},
                                  {QStringLiteral("WhiteBase"), QStringLiteral("True")},
                                  {QStringLiteral("CutMedia"), QStringLiteral("2")},
                                  {QStringLiteral("Hoffset1"), QStringLiteral("Custom.1")},
                                  {QStringLiteral("Hoffset2"), QStringLiteral("Custom.-1")},
                                  {QStringLiteral("Voffset1"), QStringLiteral("Custom.1")},
                                  {QStringLiteral("Voffset2"), QStringLiteral("Custom.-1")},
                                  {QStringLiteral("Feed"), QStringLiteral("Custom.2000")},
                                  {QStringLiteral("Stop"), QStringLiteral("Custom.-1")},
                                  {QStringLiteral("Dithering"), QStringLiteral("18")},
                                  {QStringLiteral("head1Offset"), QStringLiteral("Custom.1")},
                                  {QStringLiteral("head2Offset"), QStringLiteral("Custom.-1")},
                                  {QStringLiteral("R1TensionAdjust"), QStringLiteral("Custom.1")},
                                  {QStringLiteral("R2TensionAdjust"), QStringLiteral("Custom.-1")},
                                  {QStringLiteral("RibbonSaver"), QStringLiteral("Enabled")}};
    return options;
}

/// Attributes of a job that is printed with the preset, as ipptool names them. The ribbon saver is the one
/// that was set last.
const Texts &presetAttributes()
{
    static const Texts attributes = {
        {QStringLiteral("orientation-requested"), QStringLiteral("reverse-portrait")},
        {QStringLiteral("MirrorPrint"), QStringLiteral("true")},
        {QStringLiteral("NegativePrint"), QStringLiteral("false")},
        {QStringLiteral("Overprint"), QStringLiteral("false")},
        {QStringLiteral("WhiteBase"), QStringLiteral("false")},
        {QStringLiteral("CutMedia"), QStringLiteral("0")},
        {QStringLiteral("Hoffset1"), QStringLiteral("0")},
        {QStringLiteral("Hoffset2"), QStringLiteral("0")},
        {QStringLiteral("Voffset1"), QStringLiteral("0")},
        {QStringLiteral("Voffset2"), QStringLiteral("0")},
        {QStringLiteral("Feed"), QStringLiteral("Custom.2")},
        {QStringLiteral("Stop"), QStringLiteral("0")},
        {QStringLiteral("Dithering"), QStringLiteral("0")},
        {QStringLiteral("head1Offset"), QStringLiteral("0")},
        {QStringLiteral("head2Offset"), QStringLiteral("0")},
        {QStringLiteral("R1TensionAdjust"), QStringLiteral("0")},
        {QStringLiteral("R2TensionAdjust"), QStringLiteral("0")},
        {QStringLiteral("RibbonSaver"), QStringLiteral("Enabled")}};
    return attributes;
}

/// Those of FOUND that are expected, as "name=value name=value".
QString among(const Texts &expected, const Texts &found)
{
    QStringList pairs;
    for (const QString &name : expected.keys())
        pairs += name + QLatin1Char('=') + found.value(name, QStringLiteral("?"));
    return pairs.join(QLatin1Char(' '));
}

Texts jobAttributes(int job)
{
    QTemporaryFile request;
    if (!request.open())
        return {};
    request.write(jobRequest(job));
    request.close();
    return attributesByTool(outputOf(
        QStringLiteral("ipptool"),
        {QStringLiteral("-tv"), qEnvironmentVariable("ZBVIRTUALDEVICE_PRINTER"), request.fileName()}));
}

QList<int> jobsIn(const QString &folder)
{
    QList<int> jobs;
    for (const QString &name : QDir(folder).entryList(QDir::Files)) {
        if (const int job = jobOfDocument(name))
            jobs += job;
    }
    std::sort(jobs.begin(), jobs.end());
    return jobs;
}

} // namespace

void PictureTour::demonstratePrinting()
{
    const QString printed = qEnvironmentVariable("ZBVIRTUALDEVICE_PRINTED");
    if (printed.isEmpty() || !QFile::exists(testPage()))
        return skip(QStringLiteral("print options, presets and printing, which need a whole virtual device"));
    const QString preset = QStringLiteral("Shoes");
    turnTo(ZBSettingsTabNames::PRINTER);
    click(QStringLiteral("mirror"));
    choose(QStringLiteral("orientationOption"), QStringLiteral("Portrait"));
    writePicture(QStringLiteral("printer-mirror-portrait"));
    turnTo(ZBSettingsTabNames::PRINTER_ALIGNMENT);
    for (int step = 0; step < feedSteps; ++step)
        click(QStringLiteral("feedOffset.plus"));
    savePreset(preset);
    changeAllOptions();

    turnTo(ZBSettingsTabNames::PRINTER_PRESETS);
    click(QStringLiteral("preset.0.load"));
    const QString state = m_driver.visibleText(QStringLiteral("presets.report"));
    report(state
               == QCoreApplication::translate("PresetsPage", "%1 was loaded")
                      .arg(QStringLiteral("“%1”").arg(preset)),
           QStringLiteral("the preset %1 was loaded, the page says '%2'").arg(preset, state));
    writePicture(QStringLiteral("presets-loaded"));
    askForDeletion();

    if (const int job = printTestPage(printed))
        compareJob(job);
}

void PictureTour::savePreset(const QString &name)
{
    turnTo(ZBSettingsTabNames::PRINTER_PRESETS);
    click(QStringLiteral("presets.save"));
    m_driver.type(name);
    writePicture(QStringLiteral("presets-name-typed"));
    click(QStringLiteral("name.confirm"));
    const QString row = m_driver.visibleText(QStringLiteral("preset.0"));
    report(row == name, QStringLiteral("the options were saved, the first preset is '%1'").arg(row));
    writePicture(QStringLiteral("presets-saved"));
}

void PictureTour::changeAllOptions()
{
    turnTo(ZBSettingsTabNames::PRINTER);
    for (const QString &option :
         {QStringLiteral("mirror"), QStringLiteral("negative"), QStringLiteral("overprint"),
          QStringLiteral("whitebase"), QStringLiteral("ribbonSaver")})
        click(option);
    choose(QStringLiteral("orientationOption"), QStringLiteral("Landscape 180"));
    choose(QStringLiteral("ditheringMethod"), QStringLiteral("Stucki Dither"));
    choose(QStringLiteral("cutOption"), QStringLiteral("Cut After Job"));
    writePicture(QStringLiteral("printer-changed"));

    turnTo(ZBSettingsTabNames::PRINTER_ALIGNMENT);
    for (const QString &button :
         {QStringLiteral("horizontal1Offset.plus"), QStringLiteral("horizontal2Offset.minus"),
          QStringLiteral("vertical1Offset.plus"), QStringLiteral("vertical2Offset.minus"),
          QStringLiteral("backfeedOffset.minus")})
        click(button);
    if (QQuickItem *const slider = m_driver.visibleItem(QStringLiteral("feedOffset"))) {
        const double middle = slider->height() / 2;
        m_driver.drag(*slider, QPointF(slider->width() / 2, middle), QPointF(slider->width(), middle));
    }
    writePicture(QStringLiteral("printer-alignment-changed"));

    turnTo(ZBSettingsTabNames::PRINTER_ADVANCED);
    for (const QString &button :
         {QStringLiteral("head1HeatOffset.plus"), QStringLiteral("head2HeatOffset.minus"),
          QStringLiteral("r1Tension.plus"), QStringLiteral("r2Tension.minus")})
        click(button);
    writePicture(QStringLiteral("printer-advanced-changed"));

    const Texts options = optionsByTool(
        outputOf(QStringLiteral("lpoptions"), {QStringLiteral("-p"), QStringLiteral("BrackenXL")}));
    const QString found = among(changedOptions(), options);
    report(found == among(changedOptions(), changedOptions()),
           QStringLiteral("all 18 options were changed, lpoptions says %1").arg(found));
}

void PictureTour::askForDeletion()
{
    click(QStringLiteral("preset.0.delete"));
    writePicture(QStringLiteral("presets-deletion"));
    click(QStringLiteral("confirmation.cancel"));
    const QString row = m_driver.visibleText(QStringLiteral("preset.0"));
    report(!row.isEmpty(), QStringLiteral("the deletion was cancelled, the first preset is '%1'").arg(row));
}

int PictureTour::printTestPage(const QString &folder)
{
    const QList<int> before = jobsIn(folder);
    QFileSystemWatcher watcher;
    watcher.addPath(folder);
    turnTo(ZBSettingsTabNames::PRINTER_ALIGNMENT);
    // From 4.0 to 4.1 inches.
    click(QStringLiteral("supplyWidth.plus"));
    click(QStringLiteral("testPage.print"));
    writePicture(QStringLiteral("printer-alignment-test-page"));

    const auto isPrinted = [&folder, &before] { return jobsIn(folder).size() > before.size(); };
    if (!waitUntil(isPrinted, printMilliseconds)) {
        report(false, QStringLiteral("no job came to the printer, whose jobs are in %1").arg(folder));
        return 0;
    }
    const int job = jobsIn(folder).last();
    const QByteArray document = contentOf(QDir(folder).filePath(QStringLiteral("job-%1.prn").arg(job)));
    report(!document.isEmpty() && document == contentOf(testPage()),
           QStringLiteral("the test page was printed for a supply of 4.1 inches, job %1 is %2 (%3 bytes)")
               .arg(QString::number(job), testPage(), QString::number(document.size())));
    return job;
}

void PictureTour::compareJob(int job)
{
    const QString found = among(presetAttributes(), jobAttributes(job));
    report(found == among(presetAttributes(), presetAttributes()),
           QStringLiteral("job %1 carries all 18 options of the preset, ipptool says %2")
               .arg(QString::number(job), found));
}

void PictureTour::choose(const QString &option, const QString &text)
{
    const QQuickItem *const list = m_driver.visibleItem(option);
    const int position = list ? list->property("model").toStringList().indexOf(text) : -1;
    if (position < 0)
        return report(false, QStringLiteral("%1 does not offer '%2'").arg(option, text));
    click(option);
    click(QStringLiteral("%1.%2").arg(option).arg(position));
}
