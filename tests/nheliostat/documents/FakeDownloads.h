#pragma once

#include "support/SilentCloudSvrProxy.h"

/** A cloud service whose downloads go as the test says. */
class FakeDownloads final : public SilentCloudSvrProxy
{
public:
    QString downloadCloudFiles(const QStringList& fileIds, const QString& localDirectory, const QString&,
                               QObject* receiver, const char* slot) override
    {
        asked.append(fileIds.join(u'|'));
        directory = localDirectory;
        DownloadCloudFilesResult result;
        if (accepts)
            result.taskIds = {"t1"};
        QMetaObject::invokeMethod(receiver, slot, Qt::QueuedConnection, Q_ARG(bool, true),
                                  Q_ARG(QString, QStringLiteral("r1")),
                                  Q_ARG(DownloadCloudFilesResult, result));
        return QStringLiteral("r1");
    }
    QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                const char* slot) override
    {
        asked.append(function + u':' + static_cast<const QStringList*>(argument.data())->join(u','));
        NRpcResponse reply;
        const bool answers = !reports.isEmpty();
        if (answers)
            reply.values.insert(QStringLiteral("jsonConten"), reports.takeFirst());
        QMetaObject::invokeMethod(receiver, slot, Qt::QueuedConnection, Q_ARG(bool, answers),
                                  Q_ARG(QString, QStringLiteral("r2")), Q_ARG(NRpcResponse, reply));
        return QStringLiteral("r2");
    }

    bool accepts = true;
    QStringList reports; //!< answered one after the other; then the calls fail
    QStringList asked;
    QString directory;
};
