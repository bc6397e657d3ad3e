#include "shell/cloud/PrintService.h"

#include "shell/cloud/CloudWindow.h"
#include "shell/dialogs/DialogAnswers.h"

#include "zeolite/NxLoggerLite.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>

#include <utility>

namespace shell {

using namespace printing;

namespace {

const QString logTag = QStringLiteral("shell");

} // namespace

/** A file on its way to paper; settled once, as cancelled when it is given up. */
class PrintService::Job
{
public:
    Job(QObject& context, PrintableFile printed, QString id, Completed done)
        : file(std::move(printed))
        , fileId(std::move(id))
        , m_context(&context)
        , m_completed(std::move(done))
    {
    }
    ~Job() { settle(QStringLiteral("cancelled"), {}); }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    void settle(const QString& result, const QString& message)
    {
        const Completed completed = std::exchange(m_completed, {});
        if (!completed || !m_context)
            return;
        QJsonObject told{{QStringLiteral("result"), result},
                         {QStringLiteral("msg"), message},
                         {QStringLiteral("fileId"), fileId},
                         {QStringLiteral("path"), file.path}};
        if (!output.isEmpty() && result == QLatin1String("ok"))
            told.insert(QStringLiteral("output"), output);
        NxLoggerLite::writeInfo(logTag, QStringLiteral("print %1: %2 %3").arg(file.path, result, message));
        QMetaObject::invokeMethod(
            m_context, [completed, told] { completed(told); }, Qt::QueuedConnection);
    }
    void settle(const QString& error)
    {
        settle(error.isEmpty() ? QStringLiteral("ok") : QStringLiteral("failed"), error);
    }

    const PrintableFile file;
    const QString fileId;
    QString output; //!< the PDF file that is written; empty for a printer

private:
    QPointer<QObject> m_context;
    Completed m_completed;
};

PrintService::PrintService(DialogAnswers* answers, QObject* parent)
    : QObject(parent)
    , m_answers(answers)
{
    m_thread.setMaxThreadCount(1);
}

void PrintService::print(QWidget* parent, const QString& path, const QString& fileId, Completed completed)
{
    const Result<PrintableFile> file = findPrintable(path);
    const auto job =
        std::make_shared<Job>(*this, file ? *file : PrintableFile{path, {}}, fileId, std::move(completed));
    if (!file)
        job->settle(file.error().text);
    else if (m_answers)
        printUnattended(job);
    else
        askForPrinter(parent, job);
}

void PrintService::askForPrinter(QWidget* parent, const JobPtr& job)
{
    const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(QFileInfo(job->file.path).fileName());
    auto* dialog = new QPrintDialog(printer.get(), parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setPalette(windowPalette());
    dialog->setWindowTitle(tr("Print %1").arg(printer->docName()));
    // The job ends as cancelled when the dialog goes with it.
    connect(dialog, &QDialog::finished, this, [this, job, printer](int result) {
        if (result != QDialog::Accepted)
            return;
        if (printer->outputFormat() == QPrinter::PdfFormat)
            job->output = printer->outputFileName();
        run(job, [job, printer] { return printOn(*printer, job->file); });
    });
    dialog->open();
}

void PrintService::printUnattended(const JobPtr& job)
{
    const auto answer = m_answers->take(QStringLiteral("print"));
    if (answer && answer->isNull()) {
        NxLoggerLite::writeInfo(logTag, QStringLiteral("dialog cancelled: print \"%1\"").arg(job->file.path));
        job->settle(QStringLiteral("cancelled"), {});
        return;
    }
    job->output = answer ? answer->toString() : freePdfPath(job->file.path);
    NxLoggerLite::writeInfo(
        logTag, QStringLiteral("dialog answered: print \"%1\": \"%2\"").arg(job->file.path, job->output));
    run(job, [job] { return printToPdf(job->file, job->output); });
}

void PrintService::run(const JobPtr& job, std::function<QString()> work)
{
    m_thread.start(QRunnable::create([job, work = std::move(work)] { job->settle(work()); }));
}

} // namespace shell
