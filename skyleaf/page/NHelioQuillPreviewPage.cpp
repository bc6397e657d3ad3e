#include "page/NHelioQuillPreviewPage.h"

#include "bridge/ShellAccess.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"
#include "nrt/product.h"
#include "page/DocsUrl.h"
#include "page/PreviewCommand.h"
#include "zeolite/NxLoggerLite.h"

#include <QFileInfo>

namespace {

QString logTag()
{
    return QStringLiteral("skyleaf");
}

QString localPathOf(const PreviewCommand& command)
{
    if (!nrt::kcmc::support(QStringLiteral("CloudDocsPathRecoveryOnOpen")))
        return command.pathParts.value(0);
    return previewcommand::recoverPath(command.pathParts,
                                       [](const QString& path) { return QFileInfo(path).isFile(); });
}

} // namespace

int NHelioQuillPreviewPage::widgetType() const
{
    return previewPageType;
}

void NHelioQuillPreviewPage::notify(const QString& text)
{
    bool isTaken = true;
    if (text.startsWith(QLatin1String("suffix"), Qt::CaseInsensitive)) {
        isTaken = takeSuffixCommand(text);
    } else if (previewcommand::isPreviewCommand(text)) {
        const QStringList parts = text.split(QLatin1Char('&'));
        // Only a page in a window opens documents; elsewhere the command has no outcome.
        if (parts.size() >= 2 && !shellaccess::centralAreaOf(this))
            return;
        isTaken = parts.size() >= 2 && preview(previewcommand::parse(parts));
    } else {
        NHelioCloudDocsPage::notify(text);
    }
    setProperty("notifyResult", isTaken);
}

bool NHelioQuillPreviewPage::takeSuffixCommand(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() < 2) {
        NxLoggerLite::writeError(logTag(), QStringLiteral("%1 : notify file suffix failed, cmd = %2")
                                               .arg(QStringLiteral("NHelioQuillPreviewPage::notify"), text));
        return false;
    }
    setSuffix(parts.at(1));
    return true;
}

bool NHelioQuillPreviewPage::preview(const PreviewCommand& command)
{
    if (!command.canBeOpened())
        return false;
    if (!command.newPage &&
        clouddocspages::activatePreviewPage(nullptr, command.fileId, command.from, true)) {
        return true;
    }
    // The shell gives a page its first sub page at once; until something is shown there it is free.
    if (!subPages()->isEmpty() && isInUse())
        return false;
    return clouddocspages::loadPreviewPage(this, command.url, command.suffix, command.fileId,
                                           localPathOf(command), {}, true, command.createSubPage);
}

void NHelioQuillPreviewPage::setFileSrcFrom(const QString& url)
{
    if (!url.isEmpty())
        setProperty("File_SrcFrom", docsurl::enterSourceOf(url));
}

void NHelioQuillPreviewPage::setSuffix(const QString& suffix)
{
    if (suffix.isEmpty())
        NxLoggerLite::writeError(logTag(), QStringLiteral("set suffix failed, suffix is empty!"));
    else
        setProperty("suffix", suffix);
}

void NHelioQuillPreviewPage::setDocumentTitle(const QString& title)
{
    setPageTitle(title);
}
