#pragma once

#include "nheliostat/NHelioApplication.h"

class LocalDocumentPage;
class ShellApplication;
class ShellMainWindow;
struct LocalDocumentRequest;

/**
 * Opens files of the cloud as pages of local documents, a page for each.
 *
 * A page that was just taken out of the window makes room: the document gets its place, and the page is kept
 * aside until the document is closed. A file that is open is brought to the front instead, and fetched again
 * when that failed before. With "isSaveAs" neither happens: the document gets a tab of its own.
 */
class ShellCloudFilesMgr final : public NHelioCloudFilesMgr
{
public:
    /** The shell outlives it. */
    explicit ShellCloudFilesMgr(ShellApplication& shell)
        : m_shell(shell)
    {
    }

    void downloadAndOpen(const QVariantMap& parameters, NHelioMainWindow* window) override;

private:
    LocalDocumentPage* openPageOf(const LocalDocumentRequest& request) const;
    ShellMainWindow* windowFor(NHelioMainWindow* window) const;

    ShellApplication& m_shell;
};
