#include "nvltcloudmodule/CloudWidgets.h"

#include "nvltcloudmodule/SendFileRequest.h"
#include "nvltcloudmodule/SendFileWindow.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"
#include "zeolite/NxLoggerLite.h"

#include <QDir>
#include <QHash>
#include <QPointer>

namespace vltcloud {

namespace {

/** The open windows by their files; they outlive the objects that opened them. */
QHash<QString, QPointer<SendFileWindow>>& openWindows()
{
    static QHash<QString, QPointer<SendFileWindow>> windows;
    return windows;
}

QString siteUrl()
{
    NCoreApplication* core = NCoreApplication::instance();
    NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->getDomainUrl(QStringLiteral("quill")) : QString();
}

Sender currentSender(const NHelioApplication* application)
{
    NHelioUserInfo user;
    if (const NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr)
        proxy->currentUserInfo(user);
    return {user.loggedIn ? user.userId : QString(),
            user.localDataDir.isEmpty() ? QString()
                                        : QDir(user.localDataDir).filePath(QStringLiteral("outbox"))};
}

} // namespace

CloudWidgets::CloudWidgets(const QString& addOnName)
    : m_addOnName(addOnName)
{
}

void CloudWidgets::openWindow(const QVariantMap& arguments)
{
    const Result<SendFileRequest> request = readSendFileRequest(arguments, siteUrl());
    if (!request) {
        NxLoggerLite::writeWarning(m_addOnName, request.error());
        return;
    }
    const NHelioApplication* application = NHelioApplication::instance();
    QPointer<SendFileWindow>& window = openWindows()[request->fileId];
    if (!window) {
        window = new SendFileWindow(*request, currentSender(application),
                                    application ? application->widget() : nullptr);
        window->setAttribute(Qt::WA_DeleteOnClose);
        if (const NHelioSkin* skin = application ? application->helioSkin() : nullptr)
            window->setPalette(skin->palette(QStringLiteral("SendFileWindow")));
        NxLoggerLite::writeInfo(m_addOnName,
                                QStringLiteral("window shown: sendFile \"%1\"").arg(window->windowTitle()));
    }
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace vltcloud
