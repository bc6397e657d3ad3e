#pragma once

#include "tava/TavaIpcResult.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QObject>
#include <QString>
#include <QTimer>

/**
 * What the cloud service keeps of a file on this machine. A query is cut off after some time; a failed one
 * leaves what was known. User-interface thread.
 */
class NHelioCloudDocsLocalData : public QObject
{
    Q_OBJECT
public:
    explicit NHelioCloudDocsLocalData(QObject* parent = nullptr);

    /** Asks for a file; `queryFinish` follows once. False, and no signal, when there is nobody to ask. */
    bool query(const QString& fileId);

    /** A member of the file's record; null for an empty or unknown key. */
    QJsonValue dataValue(const QString& key) const;
    /** A member of what the web application stored with the record; null for an empty or unknown key. */
    QJsonValue extendsValue(const QString& key) const;
    /** The record's JSON text. */
    QByteArray rawData() const { return m_rawData; }

Q_SIGNALS:
    void queryFinish();

public Q_SLOTS:
    void onSelectFinish(bool success, const QString& requestId, const TavaIpcResult& result);
    void onTimeout();

private:
    void parse(const TavaIpcResult& result);

    QJsonObject m_data;
    QJsonObject m_extends;
    QString m_pendingRequestId; //!< empty when idle
    QTimer m_timer{this};
    QByteArray m_rawData;
};
