#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QVariant>

namespace NDocsOfflinePage {

/**
 * What the server would have put into one page, and the page once it holds it. A value; its owner guards it.
 * Injecting may happen on any thread; the package paths are set on the user-interface thread.
 */
class NDOPInjectHtml
{
public:
    void setConnId(const QString& connId) { m_connId = connId.toUtf8(); }
    /** The page's URL, whose query item "localId" names the local storage package. */
    void setUrl(const QString& url) { m_url = url; }
    const QString& url() const { return m_url; }
    /** JSON text. */
    void setFileInfo(const QByteArray& fileInfo) { m_fileInfo = fileInfo; }
    /**
     * Where the content and the cached page lie below the local storage package; begin with a separator. What
     * lies elsewhere, links followed, is not injected.
     */
    void setPackagePaths(const QString& syncPath, const QString& cachePath);
    /** Takes what another record of the same document knows of its local package. */
    void copyLocalData(const NDOPInjectHtml& other);

    /**
     * The page with the data in it; built once, later calls answer the same page. Empty when an argument is.
     */
    QByteArray injectHtml(const QByteArray& html, const QString& officeType, const QString& packageRoot);
    /** The page from now on, unless there is one already; answers the page. */
    QByteArray keepPage(const QByteArray& page);
    /** The script that sets what `list` names; everything when it is null. */
    QString buildInjectScript(const QString& officeType, const QVariant& list) const;

    /** What the package's pages want injected: an array of names; a null variant when it does not say. */
    static QVariant readInjectList(const QString& packageRoot);
    // Directories are paths of nlinklessfiles. What cannot be used is empty, and the log says why.
    /** The page as it was rendered last, as JSON text; empty when there is none. */
    static QByteArray readCsrCache(const QString& cacheDirectory);
    /** The content that lies on this machine, a script expression; empty when there is none. */
    static QByteArray readContentData(const QString& contentDirectory, const QString& officeType);

private:
    QByteArrayList scriptPieces(const QString& officeType, const QVariant& list) const;

    QByteArray m_fileInfo;
    QString m_contentDirectory;
    QString m_cacheDirectory;
    QByteArray m_ssrContent;
    QByteArray m_ssrContentTimes;
    QByteArray m_connId;
    QByteArray m_pageHtml; //!< empty until it is built
    QString m_url;
};

} // namespace NDocsOfflinePage
