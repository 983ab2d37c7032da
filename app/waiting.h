// Waits, with the event loop running, for something to come true.
#pragma once

#include <functional>

/// Runs the event loop until the condition holds. False when it does not within the time.
bool waitUntil(const std::function<bool()> &condition, int milliseconds);
