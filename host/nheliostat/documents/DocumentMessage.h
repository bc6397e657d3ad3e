#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

/** What a document page shows when it has no document: that it is on its way, or why there is none. */
class DocumentMessage final : public QWidget
{
    Q_OBJECT
public:
    explicit DocumentMessage(QWidget* parent = nullptr);

    /** How far it is, 0 to 100; 0 as long as that is not known. */
    void showProgress(const QString& heading, int percent);
    void showFailure(const QString& heading, const QString& why, bool canRetry);

    QString text() const;

Q_SIGNALS:
    void retryRequested();

private:
    QLabel* m_heading;
    QLabel* m_detail;
    QProgressBar* m_bar;
    QPushButton* m_retry;
};
