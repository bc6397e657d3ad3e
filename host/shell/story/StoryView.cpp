#include "shell/story/StoryView.h"

#include "shell/story/StoryPalette.h"
#include "shell/story/StoryPicture.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace shell {

StoryView::StoryView(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("storyView"));
    setMinimumWidth(static_cast<int>(story::leastPictureWidth));
}

void StoryView::setStory(const story::OpenStory& openStory)
{
    m_story = openStory;
    m_isDrawn = false;
    update();
}

void StoryView::clear()
{
    m_story.reset();
    m_isDrawn = false;
    setMinimumHeight(0);
    update();
}

void StoryView::setDark(bool dark)
{
    m_dark = dark;
    m_isDrawn = false;
    update();
}

QSize StoryView::sizeHint() const
{
    return {static_cast<int>(story::leastPictureWidth), std::max(minimumHeight(), 120)};
}

void StoryView::draw()
{
    m_isDrawn = true;
    story::PictureOptions options;
    options.width = width();
    options.dark = m_dark;
    m_picture.load(story::toSvg(*m_story, options));
    setMinimumHeight(m_picture.defaultSize().height());
}

void StoryView::paintEvent(QPaintEvent* event)
{
    const story::Palette& palette = m_dark ? story::darkPalette : story::lightPalette;
    QPainter painter(this);
    painter.fillRect(event->rect(), QColor(QLatin1String(palette.background)));
    if (!m_story) {
        painter.setPen(QColor(QLatin1String(palette.muted)));
        painter.drawText(rect(), Qt::AlignCenter, tr("No document was opened yet."));
        return;
    }
    if (!m_isDrawn)
        draw();
    painter.setRenderHint(QPainter::Antialiasing);
    m_picture.render(&painter, QRectF(QPointF(), m_picture.defaultSize()));
}

void StoryView::resizeEvent(QResizeEvent* event)
{
    m_isDrawn = m_isDrawn && event->size().width() == event->oldSize().width();
}

} // namespace shell
