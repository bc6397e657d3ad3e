#pragma once

#include <QHash>
#include <QMap>
#include <QString>

using NDcFields = QHash<QString, QString>;
using NDcOrderedFields = QMap<QString, QString>;

/** Data collection: events with a name and text values, kept and streamed in order. Any thread. */
class NDcInfoC
{
public:
    virtual ~NDcInfoC() = default;

    /** Whether the user belongs to the sample of 1 in `probability`. */
    virtual bool canSendByCurUser(int probability, bool flag) const = 0;

    /** Posts an event; the numeric arguments and the flag are kept with it. */
    virtual void postGeneralEvent(const QString& name, const NDcFields& fields, int first, int second,
                                  int probability, bool flag) = 0;
    virtual void postGeneralEvent(const QString& name, const NDcOrderedFields& fields, int first, int second,
                                  int probability) = 0;
};
