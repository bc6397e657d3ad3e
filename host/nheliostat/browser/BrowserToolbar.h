#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace nheliostat::browser {

/** Back, forward, reload and the address line. */
class BrowserToolbar final : public QWidget
{
    Q_OBJECT
public:
    explicit BrowserToolbar(QWidget* parent = nullptr);

    /** Does not disturb an address that the user is editing. */
    void setAddress(const QString& address);
    void setHistory(bool canGoBack, bool canGoForward);

Q_SIGNALS:
    void backRequested();
    void forwardRequested();
    void reloadRequested();
    void addressEntered(const QString& address);

private:
    void enterAddress();

    QToolButton* m_back;
    QToolButton* m_forward;
    QLineEdit* m_address;
};

} // namespace nheliostat::browser
