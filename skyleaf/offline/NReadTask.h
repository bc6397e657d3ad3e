#pragma once

#include <QByteArray>
#include <QObject>
#include <QRunnable>
#include <QString>

/**
 * Reads a file whole on a pool thread, which deletes the task afterwards. The path is one of nlinklessfiles:
 * a symbolic link on its way fails the task, whenever it appears.
 */
class NReadTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    explicit NReadTask(QString path);

    void run() override;

Q_SIGNALS:
    /** `ok`: the file was there and could be read; false also above nlinklessfiles::largestFile. */
    void finished(bool ok, const QByteArray& data);

private:
    const QString m_path;
    QByteArray m_data;
    bool m_ok = false;
};
