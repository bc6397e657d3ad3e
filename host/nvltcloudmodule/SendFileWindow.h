#pragma once

#include "nvltcloudmodule/SendFileOutbox.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace vltcloud {

/** Sends a file to other users, with a message, or copies its link. Stays open until the user closes it. */
class SendFileWindow final : public QWidget
{
    Q_OBJECT
public:
    SendFileWindow(SendFileRequest file, Sender sender, QWidget* parent = nullptr);

private:
    void build();
    void send();
    void copyLink();
    void tell(const QString& text, bool isError);

    const SendFileRequest m_file;
    const Sender m_sender;
    QLineEdit* m_recipients;
    QPlainTextEdit* m_message;
    QLabel* m_outcome;
    QPushButton* m_copy;
    QPushButton* m_close;
    QPushButton* m_send;
};

} // namespace vltcloud
