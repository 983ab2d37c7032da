// AnalyticsLibrary: hands one analytics event to the device's analytics.
#pragma once

#include "analyticslibrary_export.h"

#include <QtCore/QJsonObject>

class ANALYTICSLIBRARY_EXPORT AnalyticsLibrary
{
public:
    /// The kind of an event. The numbers are the analytics service's own.
    enum AnalyticHitType {
        SettingChange = 6 ///< the user changed a setting
    };

    /**
     * Hands over one event, from any thread. Never throws, never waits for more than a few milliseconds,
     * reports nothing to the caller: an event that cannot be kept is dropped.
     *
     * The event becomes one line of the spool file, with the time of the call; README.md beside this header
     * says where the file is and what a line holds. While another process holds the spool, the event stays in
     * memory and is written with the next one, or when the process ends. A folder that cannot be written, or
     * an event that is too long to be kept, is one warning in the log a process, however many events are
     * dropped for it.
     *
     * Whether the user agreed to analytics is for the caller to know; it is not asked here.
     */
    static void sendAnalyticHit(AnalyticsLibrary::AnalyticHitType type, QJsonObject hit);
};
