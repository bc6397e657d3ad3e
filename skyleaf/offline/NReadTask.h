#pragma once

#include <QByteArray>
#include <QObject>
#include <QRunnable>
#include <QString>

/** Reads a file whole on a pool thread, which deletes the task afterwards. */
class NReadTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    explicit NReadTask(QString path);

    void run() override;

Q_SIGNALS:
    /** `ok`: the file was there and could be opened. */
    void finished(bool ok, const QByteArray& data);

private:
    const QString m_path;
};
