#include "nheliostat/documents/PictureView.h"

#include <QImageReader>
#include <QPainter>

PictureView::PictureView(const QString& path, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("documentPicture"));
    QImageReader reader(path);
    reader.setAutoTransform(true);
    m_picture = QPixmap::fromImage(reader.read());
}

void PictureView::paintEvent(QPaintEvent*)
{
    if (m_picture.isNull())
        return;
    constexpr int margin = 24;
    const QRect room = rect().adjusted(margin, margin, -margin, -margin);
    QSize size = m_picture.size();
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    QRect place(QPoint(), size);
    place.moveCenter(room.center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, m_picture);
}
