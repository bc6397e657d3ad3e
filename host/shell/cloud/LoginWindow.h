#pragma once

#include "shell/cloud/CloudWindow.h"

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace shell {

/** Asks for the user's id and password until they sign in or close the window. */
class LoginWindow final : public CloudWindow
{
    Q_OBJECT
public:
    /** Empty when the user is signed in, else why not. */
    using SignIn = std::function<QString(const QString& userId, const QString& password)>;

    LoginWindow(SignIn signIn, QWidget* parent);

    /** Shows the window anew, with a text above the fields that says why; empty for the usual one. */
    void ask(const QString& reason, const QString& userId);

private:
    void build();
    void tryIt();
    void updateButton();

    const SignIn m_signIn;
    QLabel* m_reason;
    QLineEdit* m_userId;
    QLineEdit* m_password;
    QLabel* m_error;
    QPushButton* m_confirm;
    QPushButton* m_cancel;
};

} // namespace shell
