#pragma once

#include <QObject>
#include <QPointer>

class NHelioAppPage;
class QJsonValue;
class ShellApplication;
class ShellMainWindow;
class ShellRecoverBar;

namespace shell {

class DialogAnswers;

/**
 * Offers what an earlier shell left open when it was killed, in a bar of the first window. Until the offer is
 * answered the documents stay where they are kept, for the next start too.
 */
class RecoverOffer final : public QObject
{
    Q_OBJECT
public:
    /**
     * `answers` is null when somebody sits before the screen; else the first answer of the kind "recover",
     * set before or after, decides: true restores, false discards, null takes the bar away.
     */
    RecoverOffer(ShellApplication& application, DialogAnswers* answers, QObject* parent = nullptr);
    ~RecoverOffer() override;

    /** Does nothing when nothing was left. A `startPage`, which may be null, gives way to what is restored.
     */
    void show(ShellMainWindow& window, NHelioAppPage* startPage);

private:
    void takeAnswer();
    void restore();
    void discard();
    void closeBar();

    ShellApplication& m_application;
    DialogAnswers* m_answers;
    QPointer<ShellMainWindow> m_window;
    QPointer<NHelioAppPage> m_startPage;
    QPointer<ShellRecoverBar> m_bar;
};

} // namespace shell
