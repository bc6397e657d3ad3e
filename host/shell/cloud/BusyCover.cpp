#include "shell/cloud/BusyCover.h"

#include <QEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <utility>

namespace shell {

namespace {

/** A window that is minimised or covered is not painted. */
constexpr std::chrono::milliseconds longestWait(500);
constexpr int coverOpacity = 190; //!< of 255
constexpr int noteMargin = 24;

} // namespace

BusyCover::BusyCover(QWidget& covers, std::function<void()> covered)
    : QWidget(&covers)
    , m_covered(std::move(covered))
{
    setObjectName(QStringLiteral("busyCover"));
    setGeometry(covers.rect());
    covers.installEventFilter(this);
    setCursor(Qt::BusyCursor);
    show();
    raise();
    QTimer::singleShot(isVisible() ? longestWait : std::chrono::milliseconds(0), this, &BusyCover::finish);
}

bool BusyCover::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void BusyCover::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    QColor shade = palette().color(QPalette::Window);
    shade.setAlpha(coverOpacity);
    painter.fillRect(rect(), shade);
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    painter.setFont(font);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect().adjusted(noteMargin, noteMargin, -noteMargin, -noteMargin),
                     Qt::AlignCenter | Qt::TextWordWrap, tr("Switching the document…"));
    if (!std::exchange(m_isFinishing, true))
        QTimer::singleShot(0, this, &BusyCover::finish);
}

void BusyCover::finish()
{
    const QPointer<BusyCover> cover = this;
    if (const auto covered = std::exchange(m_covered, {}))
        covered();
    if (cover)
        cover->deleteLater();
}

} // namespace shell
