#include "offline/NDOPInjectHtml.h"

#include "base/NDocsLog.h"
#include "offline/InjectScript.h"
#include "offline/LocalPackagePath.h"
#include "offline/PackageFiles.h"
#include "proxy/NDOPConfig.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>
#include <QUrlQuery>

namespace NDocsOfflinePage {

void NDOPInjectHtml::setPackagePaths(const QString& syncPath, const QString& cachePath)
{
    const QUrl url(m_url);
    if (m_url.isEmpty() || !url.isValid())
        return;
    const QString root = localPckRootPath(QUrlQuery(url).queryItemValue(QStringLiteral("localId")));
    if (root.isEmpty())
        return;
    m_contentDirectory = root + syncPath;
    m_cacheDirectory = root + cachePath;
}

void NDOPInjectHtml::copyLocalData(const NDOPInjectHtml& other)
{
    m_fileInfo = other.m_fileInfo;
    m_contentDirectory = other.m_contentDirectory;
    m_cacheDirectory = other.m_cacheDirectory;
}

QByteArray NDOPInjectHtml::injectHtml(const QByteArray& html, const QString& officeType,
                                      const QString& packageRoot)
{
    if (html.isEmpty() || officeType.isEmpty() || packageRoot.isEmpty())
        return {};
    if (!m_pageHtml.isEmpty())
        return m_pageHtml;
    m_pageHtml = html;
    const QByteArrayList script = scriptPieces(officeType, readInjectList(packageRoot));
    if (script.isEmpty())
        return m_pageHtml;
    m_pageHtml = ninjectscript::pageWithScript(html, script);
    ndocslog::info(QStringLiteral("injected connid: %1").arg(QString::fromUtf8(m_connId)),
                   "NDocsOfflinePage::NDOPInjectHtml::injectHtml");
    return m_pageHtml;
}

QString NDOPInjectHtml::buildInjectScript(const QString& officeType, const QVariant& list) const
{
    const QByteArray script = scriptPieces(officeType, list).join();
    return QString::fromUtf8(script.constData(), script.size());
}

QByteArrayList NDOPInjectHtml::scriptPieces(const QString& officeType, const QVariant& list) const
{
    using namespace ninjectscript;
    return script(list, [this, &officeType](Value value) -> QByteArray {
        switch (value) {
        case Value::FileInfo:
            // Names in it are chosen by other users; JSON text means the same with the slash escaped.
            return validUtf8(escapedForScript(m_fileInfo));
        case Value::OfflineSwitch:
            return NDOPConfig::instance().isOfflineEditEnabled(officeType) ? "true" : "false";
        case Value::Content:
            return validUtf8(readContentData(m_contentDirectory, officeType));
        case Value::Cache:
            return readCsrCache(m_cacheDirectory);
        case Value::SsrContent:
            return m_ssrContent;
        case Value::SsrContentTimes:
            return m_ssrContentTimes;
        case Value::ConnId:
            return m_connId;
        }
        return {};
    });
}

QVariant NDOPInjectHtml::readInjectList(const QString& packageRoot)
{
    if (packageRoot.isEmpty())
        return {};
    const std::optional<QByteArray> text =
        npackagefiles::readWhole(packageRoot + QStringLiteral("/inject.json"));
    return text ? QVariant(QJsonDocument::fromJson(*text).array()) : QVariant();
}

QByteArray NDOPInjectHtml::readCsrCache(const QString& cacheDirectory)
{
    if (cacheDirectory.isEmpty())
        return {};
    const QByteArray csrHtml =
        npackagefiles::readWhole(cacheDirectory + QDir::separator() + QStringLiteral("csr.html"))
            .value_or(QByteArray());
    return csrHtml.isEmpty() ? QByteArray() : ninjectscript::csrJson(csrHtml);
}

QByteArray NDOPInjectHtml::readContentData(const QString& contentDirectory, const QString& officeType)
{
    const QString packageName = NDOPConfig::instance().packageName(officeType);
    if (contentDirectory.isEmpty() || packageName.isEmpty())
        return {};
    const QString path = contentDirectory + QDir::separator() + QStringLiteral("content.") + packageName;
    return ninjectscript::escapedForScript(npackagefiles::readWhole(path).value_or(QByteArray()));
}

} // namespace NDocsOfflinePage
