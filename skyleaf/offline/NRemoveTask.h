#pragma once

#include <QObject>
#include <QRunnable>
#include <QString>

/**
 * Removes a file, or a folder with everything in it, on a pool thread, which deletes the task afterwards. The
 * path is one of LinklessFiles.
 */
class NRemoveTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    NRemoveTask(QString path, bool isFolder);

    void run() override;

Q_SIGNALS:
    /** False for a path that is not there or of the other kind. */
    void finished(bool ok);

private:
    const QString m_path;
    bool m_ok = false;
    const bool m_isFolder;
};
