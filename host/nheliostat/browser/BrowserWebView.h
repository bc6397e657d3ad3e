#pragma once

#include <QStringList>
#include <QWebEngineView>

class QMimeData;

namespace nheliostat::browser {

/** The widget that shows the page. Dragged files are not the page's: they are reported and handed to the
 * owner. */
class BrowserWebView final : public QWebEngineView
{
    Q_OBJECT
public:
    using QWebEngineView::QWebEngineView;

    void setFileDropEnabled(bool enable);

Q_SIGNALS:
    /** Files are dragged into the view: their local paths. */
    void filesEntered(const QStringList& files);
    /** Files are dropped; accept the event to take them. Valid during the signal. */
    void filesDropped(QDropEvent* event);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool m_fileDrop = false;
    bool m_filesInside = false;
};

/** The local paths among the dragged URLs. */
QStringList draggedFiles(const QMimeData* data);

} // namespace nheliostat::browser
