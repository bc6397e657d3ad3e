#include "offline/NDOPInjectHtml.h"

#include "base/NDocsLog.h"
#include "offline/InjectScript.h"
#include "offline/LinklessFiles.h"
#include "offline/LocalPackagePath.h"
#include "offline/PackageFiles.h"
#include "offline/PackagePlace.h"
#include "proxy/NDOPConfig.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>
#include <QUrlQuery>

namespace NDocsOfflinePage {
namespace {

// In bytes. Both go through the memory of the page several times; what is larger the documents server gives.
constexpr qint64 largestContent = 32LL << 20;
constexpr qint64 largestRendering = 16LL << 20;

void logUnused(const QString& what, const QString& reason)
{
    ndocslog::warning(QStringLiteral("%1 is not injected: %2").arg(what, reason),
                      "NDocsOfflinePage::NDOPInjectHtml::scriptPieces");
}

/** A file of the local storage package; empty when there is none that can be used. */
QByteArray readLocal(const QString& path, qint64 largest)
{
    const nrt::files::Reading file = nlinklessfiles::readFile(path, largest);
    if (!file && file.fault != nrt::files::Fault::Missing)
        logUnused(path, file.reason);
    return file.bytes;
}

/** A script expression as it stands in the page's script; empty when it would not stay an expression there.
 */
QByteArray written(const QByteArray& expression, const char* what)
{
    if (expression.isEmpty())
        return {};
    if (!ninjectscript::isWholeExpression(expression)) {
        logUnused(QLatin1String(what), QStringLiteral("it is no whole value"));
        return {};
    }
    return ninjectscript::validUtf8(ninjectscript::escapedForScript(expression));
}

} // namespace

void NDOPInjectHtml::setPackagePaths(const QString& syncPath, const QString& cachePath)
{
    const QUrl url(m_url);
    if (m_url.isEmpty() || !url.isValid())
        return;
    const QString root = localPckRootPath(QUrlQuery(url).queryItemValue(QStringLiteral("localId")));
    if (root.isEmpty())
        return;
    const QString resolved = npackageplace::resolvedRoot(root);
    m_contentDirectory = npackageplace::pathOf(resolved, syncPath).value_or(QString());
    m_cacheDirectory = npackageplace::pathOf(resolved, cachePath).value_or(QString());
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

QByteArray NDOPInjectHtml::keepPage(const QByteArray& page)
{
    if (m_pageHtml.isEmpty())
        m_pageHtml = page;
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
            return written(m_fileInfo, "the file's information"); // names in it are chosen by other users
        case Value::OfflineSwitch:
            return NDOPConfig::instance().isOfflineEditEnabled(officeType) ? "true" : "false";
        case Value::Content:
            return written(readContentData(m_contentDirectory, officeType), "the local content");
        case Value::Cache:
            return escapedForScript(readCsrCache(m_cacheDirectory));
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
    const auto text = npackagefiles::readWithin(packageRoot, packageRoot + QStringLiteral("/inject.json"),
                                                npackagefiles::largestList);
    return text ? QVariant(QJsonDocument::fromJson(*text).array()) : QVariant();
}

QByteArray NDOPInjectHtml::readCsrCache(const QString& cacheDirectory)
{
    if (cacheDirectory.isEmpty())
        return {};
    const QByteArray csrHtml =
        readLocal(cacheDirectory + QDir::separator() + QStringLiteral("csr.html"), largestRendering);
    return csrHtml.isEmpty() ? QByteArray() : ninjectscript::csrJson(csrHtml);
}

QByteArray NDOPInjectHtml::readContentData(const QString& contentDirectory, const QString& officeType)
{
    const QString packageName = NDOPConfig::instance().packageName(officeType);
    if (contentDirectory.isEmpty() || packageName.isEmpty())
        return {};
    const QString path = contentDirectory + QDir::separator() + QStringLiteral("content.") + packageName;
    return ninjectscript::closingTagsEscaped(readLocal(path, largestContent));
}

} // namespace NDocsOfflinePage
