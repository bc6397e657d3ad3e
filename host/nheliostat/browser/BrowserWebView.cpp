#include "nheliostat/browser/BrowserWebView.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace nheliostat::browser {

QStringList draggedFiles(const QMimeData* data)
{
    QStringList files;
    const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
    for (const QUrl& url : urls) {
        if (url.isLocalFile())
            files << url.toLocalFile();
    }
    return files;
}

void BrowserWebView::setFileDropEnabled(bool enable)
{
    m_fileDrop = enable;
}

void BrowserWebView::dragEnterEvent(QDragEnterEvent* event)
{
    const QStringList files = m_fileDrop ? draggedFiles(event->mimeData()) : QStringList();
    m_filesInside = !files.isEmpty();
    if (!m_filesInside) {
        QWebEngineView::dragEnterEvent(event);
        return;
    }
    event->acceptProposedAction();
    Q_EMIT filesEntered(files);
}

void BrowserWebView::dragMoveEvent(QDragMoveEvent* event)
{
    if (m_filesInside)
        event->acceptProposedAction();
    else
        QWebEngineView::dragMoveEvent(event);
}

void BrowserWebView::dragLeaveEvent(QDragLeaveEvent* event)
{
    if (!m_filesInside)
        QWebEngineView::dragLeaveEvent(event);
    m_filesInside = false;
}

void BrowserWebView::dropEvent(QDropEvent* event)
{
    if (!m_filesInside) {
        QWebEngineView::dropEvent(event);
        return;
    }
    m_filesInside = false;
    Q_EMIT filesDropped(event);
}

} // namespace nheliostat::browser
