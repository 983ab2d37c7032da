// The configuration of the device's print scheduler as texts.
#pragma once

#include "schedulerplace.h"

#include <string>

/// cups-files.conf: where everything lies.
std::string schedulerFoldersText(const SchedulerPlace &place);

/// cupsd.conf: where it listens and who may do what. ADMINISTRATOR is the user who may change queues.
std::string schedulerText(const SchedulerPlace &place, const std::string &administrator);

/// printers.conf: the one queue.
std::string schedulerQueueText();

/// A program in place of cups-exec(8), by which the scheduler starts others.
std::string schedulerStartText();

/// The program by which the scheduler starts others, in place of cups-exec.
std::string schedulerStartText();
