#pragma once

#include <QObject>
#include <QRunnable>
#include <QString>

/**
 * Overwrites a file, or appends to it, on a pool thread, which deletes the task afterwards. The path is one
 * of LinklessFiles.
 */
class NUpdateTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    /** `data` is Base64 text; `base64`: the file holds Base64 text too, else the bytes. */
    NUpdateTask(QString path, QString data, bool append, bool base64);

    void run() override;

Q_SIGNALS:
    /** When false, the file is as it was; so too when there is a content to append to that cannot be read. */
    void finished(bool ok);

private:
    const QString m_path;
    const QString m_data;
    bool m_ok = false;
    const bool m_append;
    const bool m_base64;
};
