#pragma once

#include <QDateTime>

#include <functional>

/** The one source of time of the add-on. Tests may set it; everything else only reads it. */
namespace nclock {

QDateTime now();
QDate today();
/** Milliseconds since the epoch. */
qint64 nowMs();
/** Seconds since the epoch. */
qint64 nowSeconds();
/** A monotonic clock in nanoseconds; never set back. */
qint64 monotonicNs();

/** Replaces the wall clock until the next call; an empty function gives the system's clock back. */
void setNowForTest(std::function<QDateTime()> now);

} // namespace nclock
