#pragma once

#include <QString>
#include <QVariantMap>

class NHelioAppPage;
class NHelioCentralArea;

/** The widget type of documents preview pages. */
constexpr int previewPageType = 48;

/** What a documents preview page takes besides a notify text. */
class ICloudDocsPreviewPage
{
public:
    virtual ~ICloudDocsPreviewPage() = default;
    virtual void setSuffix(const QString& suffix) = 0;
    virtual void setDocumentTitle(const QString& title) = 0;
};

/** Finding, making and filling the pages that show cloud documents. User-interface thread. */
namespace clouddocspages {

/**
 * The first preview page, in order, that was made for the id in advance, or that was made in advance for any
 * document and is unused (it counts as used from then on). Null when there is none.
 */
NHelioAppPage* findExistingCloudDocsPage(NHelioCentralArea* centralArea, const QString& id);

/**
 * Brings the preview page of the file to the front; a null area means all visible main windows. An empty
 * `srcFrom` matches every source. False when no page shows the file.
 */
bool activatePreviewPage(NHelioCentralArea* centralArea, const QString& fileId, const QString& srcFrom,
                         bool refresh);

/** Opens a document in a preview page: one made in advance, or a new one. Nothing without a central area. */
void openCloudDocument(const QString& openUrl, const QString& suffix, const QString& fileId,
                       NHelioCentralArea* centralArea, const QString& documentUrl, bool showToolbar,
                       const QString& fileName, const QVariantMap& info);

/** Shows a document in the page. False when no URL with a host comes out of the arguments. */
bool loadPreviewPage(NHelioAppPage* page, const QString& openUrl, const QString& suffix,
                     const QString& fileId, const QString& fileName, const QString& url, bool showToolbar,
                     bool activate);

} // namespace clouddocspages
