#pragma once

#include <QObject>
#include <QRunnable>
#include <QString>
#include <QUrl>

#include <memory>

class QNetworkAccessManager;

/**
 * Downloads a URL into a file on a pool thread, which deletes the task afterwards.
 *
 * Made on the access manager's thread. The requests are made there; the pool's thread only writes. The
 * download ends when the manager is destroyed.
 */
class NDownloadFileTask : public QObject, public QRunnable
{
    Q_OBJECT
public:
    NDownloadFileTask(QString path, QUrl url, QNetworkAccessManager* manager);
    ~NDownloadFileTask() override;

    void run() override;

Q_SIGNALS:
    /** False when the file may not be written or cannot be (a full disk); the outcome of the request does not count. */
    void requestFinished(bool ok);

private:
    class Stream;
    class Source;

    const QString m_path;
    const QUrl m_url;
    std::shared_ptr<Source> m_source; //!< null without an access manager
};
