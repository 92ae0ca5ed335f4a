#pragma once

#include <QDateTime>
#include <QTimeZone>

#include <string>

#include "platform/date.h"

namespace tilika::platform {

// The pickers of Qt speak QDateTime; the program keeps instants as Date.
// Only the instant crosses, shown in the zone the core's dates are read in
// (the clock's), so a picker shows the day and time the row's text says.
// Reading and writing dates as text stays with the core's Dates.
inline QDateTime toQDateTime(Date date, const std::string& zoneId) {
    const QTimeZone zone(QByteArray::fromStdString(zoneId));
    const qint64 msecs = date.time_since_epoch().count();
    return zone.isValid() ? QDateTime::fromMSecsSinceEpoch(msecs, zone)
                          : QDateTime::fromMSecsSinceEpoch(msecs);
}
inline Date fromQDateTime(const QDateTime& dateTime) {
    return Date(std::chrono::milliseconds(dateTime.toMSecsSinceEpoch()));
}

}  // namespace tilika::platform
