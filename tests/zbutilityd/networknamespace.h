// A network of the process's own, whose interfaces and routes a test may change as it likes.
#pragma once

#include <QtCore/QString>

/**
 * Moves the process into a new network namespace, as root or, through a user namespace in which it is root,
 * as an ordinary user. Processes that are started later live there too. To be called first in main(), before
 * there are threads. Returns an empty text, or why the machine does not allow it.
 */
QString enterPrivateNetwork();
