#pragma once

#include "shell/story/OpenStory.h"

#include <QDockWidget>
#include <QTimer>

class QLabel;
class QListWidget;
class QPushButton;
class ShellApplication;
class ShellMainWindow;

namespace shell {

class PageDirectory;
class StoryRecorder;
class StoryView;

/**
 * "Story of the open": draws how the document of the window's current page was opened, or an earlier open
 * that is chosen from the list, and counts what the shell did. Looks for news only while it is in sight.
 */
class StoryDock final : public QDockWidget
{
    Q_OBJECT
public:
    /** All outlive the dock, which is a child of the window; it is hidden at first. */
    StoryDock(ShellMainWindow& window, ShellApplication& application, StoryRecorder& recorder,
              PageDirectory& pages);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeContent();
    QWidget* makeSide();
    void refresh();
    void refreshList();
    void refreshCounters();
    void showChosen();
    /** The story that is chosen, else the latest of the current page; null for none. */
    const story::OpenStory* chosen();
    void exportAs(const QString& ending);
    bool isDark() const;

    ShellMainWindow& m_window;
    ShellApplication& m_application;
    StoryRecorder& m_recorder;
    PageDirectory& m_pages;
    StoryView* m_view;
    QListWidget* m_list;
    QLabel* m_counters;
    QPushButton* m_saveSvg;
    QPushButton* m_saveJson;
    QTimer m_timer;
    quint64 m_shownRevision = 0;
    int m_shownPage = 0;
    int m_turns = 0;
};

} // namespace shell
