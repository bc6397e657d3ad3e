#pragma once

#include <QMap>
#include <QSet>
#include <QString>

#include <optional>

/**
 * What the cloud service says of transfers, and what the web application is told of it.
 *
 * An uploaded path P has two records: P + "_result" holds group id, parent id, source path, size, SHA-1 and
 * file id as fields 1 to 6 separated by "|"; P holds the state word and its details, separated by "/". The
 * state of downloads is a word, a "|" and the payload.
 */

enum class UploadState { Done, Failed, Stopped, Uploading, Queued };

struct UploadItem
{
    UploadState state;
    QString report; //!< JSON object: what the web application gets of it
};

/** The item of a path; nothing when its records are missing, too short or of an unknown state. */
std::optional<UploadItem> uploadItem(const QMap<QString, QString>& records, const QString& path);

/** Which of the watched uploads are under way and which were reported as finished. */
class UploadWatch
{
public:
    /**
     * Takes in what the service says of the paths. The report is a JSON object of lists: "queued" while any
     * is under way, "failed", "success".
     */
    QString takeIn(const QSet<QString>& paths, const QMap<QString, QString>& records);
    /** Nobody asks for the states of these paths any more. */
    void forget(const QSet<QString>& paths) { m_activeUploads.subtract(paths); }
    bool isAnyActive() const { return !m_activeUploads.isEmpty(); }
    /** Forgets which uploads were reported as finished. */
    void forgetReported() { m_reportedUploads.clear(); }

private:
    QSet<QString> m_reportedUploads;
    QSet<QString> m_activeUploads;
};

/** The state of the watched downloads. */
struct DownloadState
{
    static DownloadState parse(const QString& text);

    bool isIdle = false;
    bool hasPayload = false;
    QString payload; //!< without line breaks, tabs and carriage returns
};

/** The text without line breaks, tabs and carriage returns. */
QString onOneLine(QString text);
