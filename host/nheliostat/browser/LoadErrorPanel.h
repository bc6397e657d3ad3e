#pragma once

#include <QUrl>
#include <QWidget>

class QLabel;

namespace nheliostat::browser {

struct NetError;

/** Covers the web view when nothing could be shown: what failed, which URL, and a button to try again. */
class LoadErrorPanel final : public QWidget
{
    Q_OBJECT
public:
    explicit LoadErrorPanel(QWidget* parent = nullptr);

    void showError(const QUrl& url, const NetError& error);
    void showCrash(const QUrl& url);
    QUrl url() const { return m_url; }

Q_SIGNALS:
    void retryRequested(const QUrl& url);

private:
    void showTexts(const QUrl& url, const QString& heading, const QString& reason, const QString& code);
    void retry();

    QLabel* m_heading;
    QLabel* m_reason;
    QLabel* m_address;
    QLabel* m_code;
    QUrl m_url;
};

} // namespace nheliostat::browser
