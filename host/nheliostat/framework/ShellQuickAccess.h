#pragma once

#include "nheliostat/framework/QuickAccessList.h"

#include <QHash>

#include <functional>

class NHelioSubPage;
class QuickAccessPopup;
class ShellApplication;
class ShellMainWindow;

/**
 * Quick access in the shell: takes in the command that pins, shows the list at a button of every window's
 * header bar, and opens what the user chooses. User-interface thread.
 */
class ShellQuickAccess final : public QObject
{
    Q_OBJECT
public:
    /** `documentsSite`: where links to documents begin; empty when there is none. */
    ShellQuickAccess(ShellApplication& application, const QString& path, const QString& documentsSite);

    QuickAccessList& list() { return m_list; }
    void addTo(ShellMainWindow& window);
    void setDark(bool dark);

    /** A command for a dialog of the cloud service, of a sub page that may be null. */
    void onCommand(const QString& command, NHelioSubPage* subPage);
    /**
     * Brings the document's page to the front, or opens one in `window`. False when that cannot be done.
     */
    bool open(const QuickAccessEntry& entry, ShellMainWindow& window);

private:
    bool activateOpenPage(const QString& fileId);

    ShellApplication& m_application;
    QuickAccessList m_list;
    const QString m_documentsSite;
    QHash<QObject*, QuickAccessPopup*> m_popups; //!< by window, which owns them
    bool m_dark = false;
};
