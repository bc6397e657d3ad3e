#pragma once

#include "shell/cloud/PrintableFile.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>

class QJsonObject;
class QPrinter;
class QWidget;

namespace shell {

class DialogAnswers;

/**
 * Prints local files: the user chooses the printer; where nobody sits before the screen the file becomes a
 * PDF file, at the path that was set for the dialog "print", else beside it. Its end waits for what is being
 * printed, which is not reported any more.
 */
class PrintService final : public QObject
{
    Q_OBJECT
public:
    /** Gets {"result": "ok", "cancelled" or "failed", "msg", "fileId", "path"} and, when a PDF file was
     * written, its path as "output". */
    using Completed = std::function<void(const QJsonObject& result)>;

    /** `answers` is null when somebody sits before the screen; else it outlives this. */
    explicit PrintService(DialogAnswers* answers, QObject* parent = nullptr);
    /** Does not block; `completed` is called once, at a later turn of the event loop. */
    void print(QWidget* parent, const QString& path, const QString& fileId, Completed completed);

private:
    class Job;
    using JobPtr = std::shared_ptr<Job>;

    void askForPrinter(QWidget* parent, const JobPtr& job);
    void printUnattended(const JobPtr& job);
    /** Works on the printing thread. */
    void run(const JobPtr& job, std::function<QString()> work);

    DialogAnswers* m_answers;
    QThreadPool m_thread; //!< one: pages are large, and a printer takes its files in order
};

} // namespace shell
