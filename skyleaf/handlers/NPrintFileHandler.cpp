#include "handlers/NPrintFileHandler.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxJSApiEventHandler.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonObject>
#include <QStandardPaths>

namespace {

void replyFailed(NxWebViewJSContext& context, const QString& message,
                 const QString& status = QStringLiteral("failed"))
{
    context.reply()["resultStatus"] = status.toStdString();
    context.reply()["errorMsg"] = message.toStdString();
}

void replyPath(NxWebViewJSContext& context, const QString& path)
{
    context.reply()["resultStatus"] = "ok";
    context.reply()["path"] = path.toStdString();
}

QString text(const QVariantMap& arguments, const char* name)
{
    return arguments.value(QLatin1String(name)).toString();
}

/**
 * The chosen path; empty when there is none. The page, and with it the parent, may go while the dialog shows,
 * which QFileDialog::getSaveFileName does not survive: its dialog lies on the stack.
 */
QString askForSavePath(QWidget* parent, const QString& caption, const QString& proposed,
                       const QString& filter)
{
    const QFileInfo file(proposed);
    const QPointer<QFileDialog> dialog = new QFileDialog(parent, caption, file.path(), filter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(file.fileName());
    const bool isChosen = dialog->exec() == QDialog::Accepted && dialog;
    const QString path = isChosen ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return path;
}

/** A name of a file in some directory, and not of a place elsewhere. */
bool isFileName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(u'/') && !name.contains(u'\\') && !name.contains(QChar::Null);
}

} // namespace

NPrintFileHandler::NPrintFileHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host)
    : NxWebViewJSApiHandler(parent, scriptObject)
    , m_host(host)
{
}

void NPrintFileHandler::getPrintFileTempPath(NxWebViewJSContext& context)
{
    const QString fileName = text(parseContextArgs(context, true), "filename");
    if (!isFileName(fileName))
        return replyFailed(context, QStringLiteral("failed on invalid parameters"));
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    NHelioUserInfo user;
    if (proxy && (!proxy->currentUserInfo(user) || !user.loggedIn))
        return replyFailed(context, QStringLiteral("failed on no login"));
    if (user.cacheRoot.isEmpty())
        return replyFailed(context, QStringLiteral("failed on get cache root path"));
    const QString directory =
        QDir::toNativeSeparators(user.cacheRoot + QDir::separator() + QStringLiteral("vltDocsPrintTmp"));
    if (!QDir().mkpath(directory))
        return replyFailed(context, QStringLiteral("print temp dir not exists"));
    const QString path = QDir::toNativeSeparators(directory + QDir::separator() + fileName);
    const QFileInfo present(path);
    if (present.isSymLink())
        return replyFailed(context, QStringLiteral("failed on invalid parameters"));
    if (present.isDir()) {
        return replyFailed(context, QStringLiteral("temp path[%1] already exists").arg(directory),
                           QStringLiteral("path exists"));
    }
    replyPath(context, path);
}

void NPrintFileHandler::selectPrintFileSavePath(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    QString filter = text(arguments, "filter");
    if (filter.isEmpty())
        filter = QStringLiteral("*.*");
    const QString fileName = text(arguments, "filename");
    if (fileName.isEmpty())
        return replyFailed(context, QStringLiteral("failed on invalid parameters"));
    const QString proposed =
        QDir(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation)).filePath(fileName);
    const QString path =
        askForSavePath(qobject_cast<QWidget*>(m_host.data()), text(arguments, "caption"), proposed, filter);
    if (path.isEmpty())
        return replyFailed(context, QStringLiteral("select cancel"));
    replyPath(context, QDir::toNativeSeparators(path));
}

void NPrintFileHandler::isSupportVltDocsPrint(NxWebViewJSContext& context)
{
    if (const NHelioApplication* application = NHelioApplication::instance())
        context.reply()["isShelllessMode"] = application->isShelllessMode();
    context.reply()["isSupport"] = NDocsOfflinePage::isDocsPrintSupported();
}

void NPrintFileHandler::printFileByZeo(NxWebViewJSContext& context)
{
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    if (!proxy)
        return replyFailed(context, QStringLiteral("helio app point null"));
    NHelioMainWindow* window = application->findRelativeHelioMainWindow(this);
    if (!window)
        return replyFailed(context, QStringLiteral("find Relative HelioMainWindow fail"));
    const QVariantMap arguments = parseContextArgs(context, true);
    const QString path = text(arguments, "fileAbsolutePath");
    const QString fileId = text(arguments, "fileId");
    if (path.isEmpty() || fileId.isEmpty())
        return replyFailed(context, QStringLiteral("failed on invalid parameters"));
    if (!QFileInfo(path).isFile())
        return replyFailed(context, QStringLiteral("localPath[%1] not exists").arg(path));
    context.reply()["resultStatus"] = "ok";
    proxy->notifyOpenPrintFiles(
        window, path, fileId,
        [self = QPointer<NPrintFileHandler>(this), document = context.document()](const QJsonObject& result) {
            if (self)
                self->raisePrintResult(document, result);
        });
}

/** The event is an answer to the document that asked for the print. */
void NPrintFileHandler::raisePrintResult(quint64 document, const QJsonObject& result) const
{
    const QString event = QStringLiteral("notifyPrintResult");
    NxJSApiEventHandler* const events = scriptObject() ? scriptObject()->eventHandler() : nullptr;
    if (events && scriptObject()->isAnswerable(document, event))
        events->raiseEvent(event, JsonHelper::convertQJsonToString(result));
}
