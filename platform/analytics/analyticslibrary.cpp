// The static class: gives each event its time and puts it into the spool of the user that runs the process.
#include "analyticslibrary.h"

#include "analyticsline.h"
#include "analyticsspool.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QGlobalStatic>
#include <QtCore/QStandardPaths>

namespace {

QString spoolFolder()
{
    QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    // QStandardPaths hands out a relative XDG_DATA_HOME as it stands. The XDG base directory rules ask to
    // ignore it, and a spool that depends on the working directory would never be found by a shipper.
    if (QDir::isRelativePath(data))
        data = QDir::homePath() + QStringLiteral("/.local/share");
    return QDir::cleanPath(data + QStringLiteral("/Corvanta/analytics"));
}

Q_GLOBAL_STATIC_WITH_ARGS(AnalyticsSpool, processSpool, (spoolFolder()))

} // namespace

void AnalyticsLibrary::sendAnalyticHit(AnalyticsLibrary::AnalyticHitType type, QJsonObject hit)
{
    try {
        if (!processSpool.isDestroyed())
            processSpool->append(analyticsLine(QDateTime::currentDateTimeUtc(), int(type), hit));
    } catch (...) {
        // Out of memory. The caller is about to save a setting, which matters more than this event.
    }
}
