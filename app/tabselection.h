// Asks the running Settings application, through its local socket, to turn to a tab.
#pragma once

#include <QtCore/QString>

/// Connects to the local socket of this name and writes the number of the tab. Returns an empty text, or one
/// line that says why it could not be done. The application never answers: whether it has a page for that
/// number is seen on its window only.
QString selectTab(const QString &socketName, int tab);
