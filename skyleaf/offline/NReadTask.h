#pragma once

#include <QByteArray>
#include <QObject>
#include <QRunnable>
#include <QString>

/**
 * Reads a file whole on a pool thread, which deletes the task afterwards. Symbolic links count as they are
 * when the task is made: one that appears later fails it.
 */
class NReadTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    explicit NReadTask(const QString& path);

    void run() override;

Q_SIGNALS:
    /** `ok`: the file was there and could be read; false also above nlinklessfiles::largestFile. */
    void finished(bool ok, const QByteArray& data);

private:
    const QString m_path;
    QByteArray m_data;
    bool m_ok = false;
};
