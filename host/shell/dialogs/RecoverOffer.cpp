#include "shell/dialogs/RecoverOffer.h"

#include "shell/dialogs/DialogAnswers.h"

#include "nheliostat/NHelioPage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellRecoverBar.h"
#include "nheliostat/framework/ShellRecovery.h"
#include "zeolite/NxLoggerLite.h"

namespace shell {

namespace {

const QString kind = QStringLiteral("recover");

void log(const QString& text)
{
    NxLoggerLite::writeInfo(QStringLiteral("shell"), text);
}

} // namespace

RecoverOffer::RecoverOffer(ShellApplication& application, DialogAnswers* answers, QObject* parent)
    : QObject(parent)
    , m_application(application)
    , m_answers(answers)
{
}

RecoverOffer::~RecoverOffer()
{
    if (m_answers)
        m_answers->setListener(kind, {});
}

void RecoverOffer::show(ShellMainWindow& window, NHelioAppPage* startPage)
{
    const int documents = m_application.recovery().offered();
    if (documents == 0)
        return;
    m_window = &window;
    m_startPage = startPage;
    m_bar = new ShellRecoverBar(documents);
    connect(m_bar, &ShellRecoverBar::restoreChosen, this, &RecoverOffer::restore);
    connect(m_bar, &ShellRecoverBar::dismissChosen, this, &RecoverOffer::discard);
    window.area().showNotice(m_bar);
    log(QStringLiteral("recovery offered: %1 documents").arg(documents));
    if (!m_answers)
        return;
    m_answers->setListener(kind, [this] { takeAnswer(); });
    takeAnswer();
}

void RecoverOffer::takeAnswer()
{
    const auto answer = m_bar ? m_answers->take(kind) : std::nullopt;
    if (!answer)
        return;
    if (answer->isNull())
        closeBar();
    else if (answer->toBool())
        restore();
    else
        discard();
}

void RecoverOffer::restore()
{
    closeBar();
    if (!m_window)
        return;
    log(QStringLiteral("recovery: restored"));
    const bool isUntouched = m_startPage && m_window->area().pages() == QVector<NHelioAppPage*>{m_startPage};
    m_application.recovery().restore(*m_window);
    if (isUntouched && m_startPage && m_window && m_window->area().pages().size() > 1)
        m_startPage->close();
}

void RecoverOffer::discard()
{
    closeBar();
    log(QStringLiteral("recovery: discarded"));
    m_application.recovery().dismiss();
}

void RecoverOffer::closeBar()
{
    if (!m_bar)
        return;
    m_bar->hide();
    m_bar->deleteLater();
    m_bar.clear();
}

} // namespace shell
