#include "shell/story/StoryDock.h"

#include "shell/pages/PageDirectory.h"
#include "shell/story/ProcessMemory.h"
#include "shell/story/StoryFiles.h"
#include "shell/story/StoryRecorder.h"
#include "shell/story/StoryTexts.h"
#include "shell/story/StoryView.h"

#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellHeaderBar.h"
#include "nheliostat/framework/ShellLook.h"
#include "nheliostat/framework/ShellMainWindow.h"

#include <QAction>
#include <QDateTime>
#include <QEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>

namespace shell {

namespace {

constexpr int refreshMs = 500;
/** Counters cost a look at all processes. */
constexpr int turnsPerCount = 4;
constexpr int mostListed = 30;
constexpr int followCurrentRow = 0;

QString listText(const story::OpenStory& openStory)
{
    const QString time =
        QDateTime::fromMSecsSinceEpoch(openStory.beganAt).toString(QStringLiteral("HH:mm:ss"));
    return QStringLiteral("%1  %2").arg(time, story::titleText(openStory));
}

QString countersText(const ShellApplication& application, const StoryRecorder& recorder)
{
    int open = 0;
    int released = 0;
    for (const NHelioMainWindow* window : application.mainWindows()) {
        for (const NHelioAppPage* page : window->centralArea()->pages())
            ++(page->isReleased() ? released : open);
    }
    const MemoryUse memory = memoryUse();
    const StoryRecorder::Counts counts = recorder.counts();
    return StoryDock::tr("Pages: %1 open, %2 released\nReleases so far: %3\nMemory: shell %4, browser %5 in "
                         "%6 processes\nBrowser requests: %7 answered on this computer, %8 over the network")
        .arg(open)
        .arg(released)
        .arg(counts.releases)
        .arg(story::sizeText(memory.shell), story::sizeText(memory.browser))
        .arg(memory.browserProcesses)
        .arg(counts.localRequests)
        .arg(counts.networkRequests);
}

} // namespace

StoryDock::StoryDock(ShellMainWindow& window, ShellApplication& application, StoryRecorder& recorder,
                     PageDirectory& pages)
    : QDockWidget(tr("Story of the open"), &window)
    , m_window(window)
    , m_application(application)
    , m_recorder(recorder)
    , m_pages(pages)
    , m_view(new StoryView)
    , m_list(new QListWidget)
    , m_counters(new QLabel)
    , m_saveSvg(new QPushButton(tr("Save as SVG…")))
    , m_saveJson(new QPushButton(tr("Save as JSON…")))
{
    constexpr int usualHeight = 340;
    setObjectName(QStringLiteral("storyDock"));
    setFeatures(QDockWidget::DockWidgetClosable);
    setAllowedAreas(Qt::BottomDockWidgetArea);
    setWidget(makeContent());
    window.addDockWidget(Qt::BottomDockWidgetArea, this);
    window.resizeDocks({this}, {usualHeight}, Qt::Vertical);
    hide();

    toggleViewAction()->setObjectName(QStringLiteral("storyToggle"));
    toggleViewAction()->setIcon(ShellLook::icon(QStringLiteral("story"), isDark()));
    window.header().addTool(toggleViewAction());
    m_view->setDark(isDark());

    connect(&m_timer, &QTimer::timeout, this, &StoryDock::refresh);
    connect(m_list, &QListWidget::currentRowChanged, this, &StoryDock::showChosen);
    connect(m_saveSvg, &QPushButton::clicked, this, [this] { exportAs(QStringLiteral("svg")); });
    connect(m_saveJson, &QPushButton::clicked, this, [this] { exportAs(QStringLiteral("json")); });
}

QWidget* StoryDock::makeContent()
{
    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("storyPanel"));
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("storyScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(m_view);
    auto* row = new QHBoxLayout(content);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(makeSide());
    row->addWidget(scroll, 1);
    return content;
}

QWidget* StoryDock::makeSide()
{
    constexpr int sideWidth = 290;
    auto* side = new QWidget;
    side->setObjectName(QStringLiteral("storySide"));
    side->setFixedWidth(sideWidth);
    m_list->setObjectName(QStringLiteral("storyList"));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setTextElideMode(Qt::ElideRight);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_counters->setObjectName(QStringLiteral("storyCounters"));
    m_counters->setWordWrap(true);
    m_saveSvg->setObjectName(QStringLiteral("storySaveSvg"));
    m_saveJson->setObjectName(QStringLiteral("storySaveJson"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_saveSvg);
    buttons->addWidget(m_saveJson);
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(10, 10, 10, 10);
    column->addWidget(m_list, 1);
    column->addWidget(m_counters);
    column->addLayout(buttons);
    return side;
}

void StoryDock::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    m_turns = 0;
    refresh();
    m_timer.start(refreshMs);
}

void StoryDock::hideEvent(QHideEvent* event)
{
    QDockWidget::hideEvent(event);
    m_timer.stop();
}

void StoryDock::changeEvent(QEvent* event)
{
    QDockWidget::changeEvent(event);
    if (event->type() != QEvent::StyleChange)
        return;
    m_view->setDark(isDark());
    toggleViewAction()->setIcon(ShellLook::icon(QStringLiteral("story"), isDark()));
}

bool StoryDock::isDark() const
{
    return m_application.helioSkin()->isDark();
}

void StoryDock::refresh()
{
    if (m_turns++ % turnsPerCount == 0)
        refreshCounters();
    const int page = m_pages.idOf(m_window.area().currentPage());
    if (m_shownRevision == m_recorder.revision() && m_shownPage == page)
        return;
    m_shownRevision = m_recorder.revision();
    m_shownPage = page;
    refreshList();
    showChosen();
}

void StoryDock::refreshCounters()
{
    m_counters->setText(countersText(m_application, m_recorder));
}

/** The first row follows the current page; the opens below are the latest first, known by their beginning. */
void StoryDock::refreshList()
{
    const QSignalBlocker blocker(m_list);
    const QVariant kept = m_list->currentItem() ? m_list->currentItem()->data(Qt::UserRole) : QVariant();
    m_list->clear();
    m_list->addItem(tr("The current page"));
    m_list->setCurrentRow(followCurrentRow);
    const QVector<story::OpenStory>& stories = m_recorder.stories();
    for (int i = stories.size() - 1; i >= 0 && m_list->count() <= mostListed; --i) {
        auto* item = new QListWidgetItem(listText(stories.at(i)), m_list);
        item->setToolTip(stories.at(i).url);
        item->setData(Qt::UserRole, stories.at(i).beganAt);
        if (kept.isValid() && kept == item->data(Qt::UserRole))
            m_list->setCurrentItem(item);
    }
}

const story::OpenStory* StoryDock::chosen()
{
    const QListWidgetItem* item = m_list->currentItem();
    if (!item || !item->data(Qt::UserRole).isValid())
        return m_recorder.latestOf(m_shownPage);
    for (const story::OpenStory& each : m_recorder.stories()) {
        if (item->data(Qt::UserRole) == each.beganAt)
            return &each;
    }
    return nullptr;
}

void StoryDock::showChosen()
{
    const story::OpenStory* openStory = chosen();
    if (openStory)
        m_view->setStory(*openStory);
    else
        m_view->clear();
    m_saveSvg->setEnabled(openStory);
    m_saveJson->setEnabled(openStory);
}

void StoryDock::exportAs(const QString& ending)
{
    const story::OpenStory* found = chosen();
    if (!found)
        return;
    const story::OpenStory openStory = *found; // the dialog lets time pass
    QString file =
        QFileDialog::getSaveFileName(this, tr("Save the story"), QStringLiteral("story.%1").arg(ending),
                                     QStringLiteral("*.%1").arg(ending));
    if (file.isEmpty())
        return;
    if (!file.endsWith(QLatin1Char('.') + ending, Qt::CaseInsensitive))
        file += QLatin1Char('.') + ending;
    const QString error = saveStory(openStory, file, isDark());
    if (!error.isEmpty())
        QMessageBox::warning(this, tr("Save the story"), error);
}

} // namespace shell
