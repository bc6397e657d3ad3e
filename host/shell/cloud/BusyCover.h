#pragma once

#include <QWidget>

#include <functional>

namespace shell {

/**
 * A translucent cover with a busy text over a widget. Calls `covered` once, at a turn of the event loop after
 * it was painted, or soon when it cannot be painted, and deletes itself then. With the widget it goes
 * silently.
 */
class BusyCover final : public QWidget
{
    Q_OBJECT
public:
    BusyCover(QWidget& covers, std::function<void()> covered);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void finish();

    std::function<void()> m_covered;
    bool m_isFinishing = false;
};

} // namespace shell
