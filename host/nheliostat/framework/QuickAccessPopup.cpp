#include "nheliostat/framework/QuickAccessPopup.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellLook.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int popupWidth = 320;
constexpr int mostHeight = 420;
constexpr int borders = 12;

} // namespace

QuickAccessPopup::QuickAccessPopup(QuickAccessList& list, QWidget* parent)
    : QFrame(parent, Qt::Popup)
    , m_list(list)
    , m_rows(new QWidget)
    , m_column(new QVBoxLayout(m_rows))
{
    setObjectName(QStringLiteral("quickAccessPopup"));
    m_rows->setObjectName(QStringLiteral("quickAccessRows"));
    m_column->setContentsMargins(6, 6, 6, 6);
    m_column->setSpacing(0);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("quickAccessScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(m_rows);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(1, 1, 1, 1);
    column->addWidget(scroll);
    connect(&m_list, &QuickAccessList::changed, this, &QuickAccessPopup::refresh);
}

void QuickAccessPopup::setDark(bool dark)
{
    m_dark = dark;
    refresh();
}

void QuickAccessPopup::refresh()
{
    if (isVisible())
        fill();
}

void QuickAccessPopup::showBelow(const QWidget& button)
{
    m_list.reload();
    fill();
    m_rows->adjustSize();
    resize(popupWidth, std::min(m_column->sizeHint().height() + borders, mostHeight));
    const QRect screen = button.screen()->availableGeometry();
    QPoint corner = button.mapToGlobal(QPoint(button.width() - width(), button.height()));
    corner.setX(std::clamp(corner.x(), screen.left(), std::max(screen.left(), screen.right() - width())));
    move(corner);
    show();
}

void QuickAccessPopup::fill()
{
    while (QLayoutItem* item = m_column->takeAt(0)) {
        // Later: a row may be what was clicked.
        if (QWidget* row = item->widget()) {
            row->hide();
            row->deleteLater();
        }
        delete item;
    }
    for (const QuickAccessEntry& entry : m_list.entries())
        addRow(entry);
    if (m_list.entries().isEmpty())
        addHint();
    m_column->addStretch();
}

void QuickAccessPopup::addHint()
{
    auto* hint = new QLabel(tr("Nothing is pinned. The menu of a tab pins its document."), m_rows);
    hint->setObjectName(QStringLiteral("quickAccessHint"));
    hint->setWordWrap(true);
    hint->setMargin(10);
    m_column->addWidget(hint);
}

void QuickAccessPopup::addRow(const QuickAccessEntry& entry)
{
    auto* row = new QWidget(m_rows);
    auto* open = new QToolButton(row);
    open->setObjectName(QStringLiteral("quickAccessOpen"));
    open->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    open->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    open->setIcon(helioFileIcon(entry.suffix.isEmpty() ? QStringLiteral("file") : entry.suffix));
    const QString name = entry.name.isEmpty() ? entry.fileId : entry.name;
    constexpr int besideText = 90;
    open->setText(fontMetrics()
                      .elidedText(name.simplified(), Qt::ElideMiddle, popupWidth - besideText)
                      .replace(u'&', QLatin1String("&&")));
    open->setToolTip(name.toHtmlEscaped());
    connect(open, &QToolButton::clicked, this, [this, entry] {
        hide();
        Q_EMIT chosen(entry);
    });
    auto* unpin = new QToolButton(row);
    unpin->setObjectName(QStringLiteral("quickAccessUnpin"));
    unpin->setIcon(ShellLook::icon(QStringLiteral("close"), m_dark));
    unpin->setToolTip(tr("Unpin"));
    connect(unpin, &QToolButton::clicked, this, [this, fileId = entry.fileId] { m_list.unpin(fileId); });

    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(open, 1);
    line->addWidget(unpin);
    m_column->addWidget(row);
}
