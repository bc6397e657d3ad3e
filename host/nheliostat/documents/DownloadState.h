#pragma once

#include <QString>

/** How far the download of one file is. */
struct DownloadState
{
    enum class Stage { Running, Finished, Failed };

    Stage stage = Stage::Running;
    int percent = 0; //!< 0 to 100
    QString path;    //!< where the file lies, once it is finished
    QString message; //!< why it failed; may be empty

    /**
     * Reads the cloud service's report: the state word, "|" and the JSON payload {"tasks": [one task]}. A
     * report without the task is a failure, for the service does not know it any more.
     */
    static DownloadState fromReport(const QString& report);
};
