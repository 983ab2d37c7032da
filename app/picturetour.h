// PictureTour: drives the Settings application without a person, takes pictures of it and checks that the
// things for which it exists work: storing a setting, turning to a tab on request, showing the internet
// state, showing what the device is, resetting the supply calibration, choosing a keyboard layout, setting
// the clock, keeping print options in a preset and printing with them, and following the printer's jobs.
#pragma once

#include "virtualdevicecontrol.h"
#include "windowdriver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTextStream>

class QQuickWindow;

class PictureTour
{
    Q_DECLARE_TR_FUNCTIONS(PictureTour)

public:
    /// The window is that of a SettingsApplication without animations, and outlives the tour.
    PictureTour(QQuickWindow *window, const QString &directory);

    /// Writes the pictures and one line a result. The exit status of the program: 0 when all worked.
    int run();

private:
    void photographPages();
    void photographNotice();
    void demonstrateBrightness();
    void demonstrateTabSelection();
    void demonstrateInternet();
    void demonstrateAbout();
    void demonstrateCalibrationReset();
    void demonstrateKeyboardLayout();
    void demonstrateClock();
    void demonstratePrinting();
    void demonstrateHistory();

    void compareShown(const QString &item, const QString &expected, const QString &source);
    void compareOffsets();
    void compareStorage();
    bool showAbout();
    void setClockByHand();
    void turnNetworkTimeOn();
    void savePreset(const QString &name);
    void changeAllOptions();
    void askForDeletion();
    /// Prints the test page; the number of the job, 0 when none was printed.
    int printTestPage(const QString &folder);
    void compareJob(int job);
    /// Prints three documents with the print system's own tool; whether they appeared.
    bool printDocuments();
    void reprintDocument();
    void killPrintQueue();
    void clearHistory();
    /// Names of the newest jobs as the page shows them.
    QStringList shownJobs(int count) const;
    bool showsPicture(const QString &item) const;
    /// From a list of choices, by its text.
    void choose(const QString &option, const QString &text);
    /// Whether the page lets the clock be set within the patience.
    bool waitForClockChooser();
    /// Turns a wheel by touches until it shows this text.
    void turnWheel(const QString &wheel, const QString &text);

    void sayInternet(bool connected, const QString &word);
    /// By a touch on the column at the left.
    void turnTo(int tab);
    /// As the application does it when it is asked to.
    void showTab(int tab);
    void scrollTo(double share);
    void writePicture(const QString &name);
    void report(bool worked, const QString &what);
    /// What is not done where it would act on the machine itself.
    void skip(const QString &what);
    bool click(const QString &item);

    QQuickWindow *const m_window;
    WindowDriver m_driver;
    VirtualDeviceControl m_device;
    const QDir m_directory;
    QTextStream m_output;
    int m_failures = 0;
};
