// What the user asked of the Settings application on its command line.
#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

struct CommandLine
{
    enum Task {
        ShowWindow, ///< the application as the user of the device knows it
        TakePictures, ///< drive the application without a display and write a picture of every page
        SelectTab, ///< ask the application that is running to turn to a tab
        ShowHelp,
        ShowVersion,
        Refuse ///< the command line makes no sense; `error` says why
    };

    Task task = ShowWindow;
    int tab = 0; ///< number of a tab, for ShowWindow and SelectTab
    QSize size = {800, 480}; ///< of the window
    QString pictureDirectory;
    QString error; ///< one line
    QString help; ///< what --help prints
};

/// Reads a command line, the program's own name included. Touches nothing outside: it runs before the
/// application object exists, since that object's platform depends on the answer.
CommandLine readCommandLine(const QStringList &arguments);
