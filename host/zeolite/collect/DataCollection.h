#pragma once

#include "zeolite/NDcInfoC.h"
#include "zeolite/OrderedDelivery.h"
#include "zeolite/files/RotatingFile.h"

#include <QJsonObject>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

/** One data-collection event as it was posted. */
struct DcEvent
{
    QString name;
    NDcOrderedFields fields;
    qint64 t = 0; //!< milliseconds since the epoch; set when the event takes its place in the order
    int first = 0;
    int second = 0;
    int probability = 0;
    bool flag = false;

    /** {"name", "fields", "t"}. */
    QJsonObject toJson() const;
};

/**
 * Keeps the latest events in memory, appends every event to a file as one line of JSON ({"name", "fields",
 * "t", "arguments": [first, second], "probability", "flag"}) and hands it to observers, all in one order. Any
 * thread.
 */
class DataCollection final : public NDcInfoC
{
public:
    /** Called on the posting thread; see OrderedDelivery for what it may do. */
    using Observer = OrderedDelivery<DcEvent>::Observer;
    using ClockMs = std::function<qint64()>;

    static constexpr std::size_t keptEvents = 10000;

    /** Without a file path the events are kept in memory only. */
    DataCollection(const QString& filePath, QString machineId, ClockMs nowMs);

    bool canSendByCurUser(int probability, bool flag) const override;
    void postGeneralEvent(const QString& name, const NDcFields& fields, int first, int second,
                          int probability, bool flag) override;
    void postGeneralEvent(const QString& name, const NDcOrderedFields& fields, int first, int second,
                          int probability) override;

    /** Whom the sampling goes by; without a user it goes by the machine. */
    void setUserId(const QString& userId);
    int addObserver(Observer observer);
    void removeObserver(int id);
    /** The events kept in memory, oldest first. */
    std::vector<DcEvent> events() const;

private:
    void record(DcEvent& event);

    const QString m_machineId;
    const ClockMs m_nowMs;
    std::optional<RotatingFile> m_file; //!< written by the recorder only
    bool m_fileFailed = false;
    mutable std::mutex m_mutex;
    QString m_userId;
    std::deque<DcEvent> m_events;
    OrderedDelivery<DcEvent> m_delivery;
};
