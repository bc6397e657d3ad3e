#pragma once

#include "page/NOpenSteps.h"
#include "zeolite/NDcInfoC.h"

#include <QString>
#include <QVector>

/** The events that tell how cloud documents are opened: their values, and posting them. */
namespace openevents {

struct Precreate
{
    QString entry;
    bool init = false;
    bool used = false;
    QString traceId;
    QString officeType;
    qint64 elapsedMs = 0;
};

struct OpenStep
{
    QString step;
    QString traceId;
    QString notifyUrl;
    bool loaded = false;
    bool preInited = false;
    QString officeType;
    int errorCode = 0;
    QString errorMessage;
    QString browserUrl;
};

struct OpenTime
{
    const NOpenSteps* steps = nullptr;
    qint64 loadStartMs = 0; //!< milliseconds since the epoch
    QString notifyUrl;
    QString officeType;
    QString traceId;
};

NDcFields precreateFields(const Precreate& event);
NDcFields openStepFields(const OpenStep& event);
NDcFields openTimeFields(const OpenTime& event);
/** `points` are exactly three times of the monotonic clock in nanoseconds. */
NDcFields performanceFields(const QVector<qint64>& points, qint64 nowNs);

// Nothing is posted without the application or its data collection.
void post(const QString& name, const NDcFields& fields, int probability = 1);
void postCrashInfo(int openSubPages);

} // namespace openevents
