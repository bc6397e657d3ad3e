#pragma once

#include "nheliostat/framework/WorkAreaStore.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>

#include <functional>

class NHelioAppPage;
class NHelioSubPage;
class ShellMainWindow;

/**
 * Keeps what all windows show, so that it can be shown again after the shell was killed, and shows what an
 * earlier shell left. User-interface thread.
 */
class ShellRecovery final : public QObject
{
    Q_OBJECT
public:
    /** `directory`: of WorkAreaStore. `openWindow` makes the windows after the first. */
    ShellRecovery(const QString& directory, std::function<ShellMainWindow*()> openWindow,
                  QObject* parent = nullptr);

    /** Keeps what the window shows from now on. */
    void watch(ShellMainWindow& window);

    /** How many documents an earlier shell left; 0 once that was decided. */
    int offered();
    /**
     * Opens them as tabs, in order: those of the first window in `window`, the others in windows of their
     * own. Only what was shown loads, the rest when it is. Items whose page cannot be made are logged and
     * left out.
     */
    void restore(ShellMainWindow& window);
    /** Gives them up. */
    void dismiss();

    /** The shell ends in good order. */
    void end();

private:
    void watchPage(NHelioAppPage* page);
    void watchBrowser(NHelioAppPage* page);
    void update(NHelioAppPage* page);
    void schedule();
    void write();
    WorkAreaRecord shown() const;
    void restoreWindow(const WorkAreaRecord::Window& record, ShellMainWindow& window);
    NHelioAppPage* restoreItem(const NHelioWorkAreaRecoverItem& item, ShellMainWindow& window);

    std::function<ShellMainWindow*()> m_openWindow;
    QVector<QPointer<ShellMainWindow>> m_windows;
    WorkAreaStore m_store;
    QTimer m_writeSoon;
    bool m_ended = false;
};
