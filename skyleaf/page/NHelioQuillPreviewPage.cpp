#include "page/NHelioQuillPreviewPage.h"

#include "page/DocsUrl.h"
#include "zeolite/NxLoggerLite.h"

int NHelioQuillPreviewPage::widgetType() const
{
    return previewPageType;
}

void NHelioQuillPreviewPage::notify(const QString& text)
{
    NHelioCloudDocsPage::notify(text);
    setProperty("notifyResult", true);
}

void NHelioQuillPreviewPage::setFileSrcFrom(const QString& url)
{
    if (!url.isEmpty())
        setProperty("File_SrcFrom", docsurl::enterSourceOf(url));
}

void NHelioQuillPreviewPage::setSuffix(const QString& suffix)
{
    if (suffix.isEmpty())
        NxLoggerLite::writeError(QStringLiteral("skyleaf"),
                                 QStringLiteral("set suffix failed, suffix is empty!"));
    else
        setProperty("suffix", suffix);
}

void NHelioQuillPreviewPage::setDocumentTitle(const QString& title)
{
    setPageTitle(title);
}
