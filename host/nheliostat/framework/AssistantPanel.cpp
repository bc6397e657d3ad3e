#include "nheliostat/framework/AssistantPanel.h"

#include "nheliostat/framework/AssistantMessage.h"

#include <QFontDatabase>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

QLabel* plainText(const QString& text, const QString& objectName)
{
    auto* label = new QLabel(text);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

/** Lets very long words break, which plain texts do not by themselves. */
QString breakable(const QString& text)
{
    constexpr int longestWord = 28;
    constexpr QChar zeroWidthSpace(0x200b);
    QString result;
    int length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > longestWord && !c.isLowSurrogate()) {
            result.append(zeroWidthSpace);
            length = 1;
        }
        result.append(c);
    }
    return result;
}

QString sourceText(const AssistantMessage& message)
{
    if (message.source.isEmpty() || message.docSource.isEmpty())
        return message.source + message.docSource;
    return QStringLiteral("%1 · %2").arg(message.source, message.docSource);
}

QFrame* cardOf(const AssistantMessage& message)
{
    auto* card = new QFrame;
    card->setObjectName(QStringLiteral("assistantCard"));
    auto* time = new QLabel(QLocale().toString(message.time.time(), QStringLiteral("HH:mm:ss")));
    time->setObjectName(QStringLiteral("assistantTime"));
    auto* head = new QHBoxLayout;
    head->addWidget(plainText(sourceText(message), QStringLiteral("assistantSource")), 1);
    head->addWidget(time, 0, Qt::AlignTop);
    QLabel* data = plainText(breakable(message.data), QStringLiteral("assistantData"));
    data->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(12, 10, 12, 12);
    column->setSpacing(6);
    column->addLayout(head);
    column->addWidget(data);
    return card;
}

} // namespace

AssistantPanel::AssistantPanel(QWidget* parent)
    : QWidget(parent)
    , m_hint(new QLabel(tr("Messages from documents appear here.")))
{
    setObjectName(QStringLiteral("assistantPanel"));
    setAttribute(Qt::WA_StyledBackground);
    m_hint->setObjectName(QStringLiteral("assistantHint"));
    m_hint->setWordWrap(true);
    auto* list = new QWidget;
    list->setObjectName(QStringLiteral("assistantList"));
    m_column = new QVBoxLayout(list);
    m_column->setContentsMargins(12, 12, 12, 12);
    m_column->setSpacing(8);
    m_column->addWidget(m_hint);
    m_column->addStretch();
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("assistantScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidgetResizable(true);
    scroll->setWidget(list);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(scroll);
}

void AssistantPanel::add(const AssistantMessage& message)
{
    m_hint->hide();
    QFrame* card = cardOf(message);
    m_column->insertWidget(0, card);
    m_cards.prepend(card);
    while (m_cards.size() > mostMessages)
        delete m_cards.takeLast();
}
