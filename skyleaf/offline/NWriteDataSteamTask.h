#pragma once

#include <QByteArray>
#include <QObject>
#include <QRunnable>
#include <QString>

/**
 * Writes bytes to a file, or behind what it holds, on a pool thread, which deletes the task afterwards. The
 * path is one of LinklessFiles.
 */
class NWriteDataSteamTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    NWriteDataSteamTask(QString path, QByteArray data, bool append);

    void run() override;

Q_SIGNALS:
    /** When false, the file is as it was. */
    void finished(bool ok);

private:
    const QString m_path;
    const QByteArray m_data;
    bool m_ok = false;
    const bool m_append;
};
