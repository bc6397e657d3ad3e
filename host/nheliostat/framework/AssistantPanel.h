#pragma once

#include <QWidget>

class QFrame;
class QLabel;
class QVBoxLayout;
struct AssistantMessage;

/** The messages that the assistant got, the last one on top; the oldest ones go. */
class AssistantPanel final : public QWidget
{
    Q_OBJECT
public:
    static constexpr int mostMessages = 50;

    explicit AssistantPanel(QWidget* parent = nullptr);

    void add(const AssistantMessage& message);
    int count() const { return m_cards.size(); }

private:
    QLabel* m_hint;
    QVBoxLayout* m_column;
    QVector<QFrame*> m_cards; //!< the last one first
};
