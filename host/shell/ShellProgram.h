#pragma once

#include "shell/config/CommandLine.h"
#include "shell/config/HostFile.h"
#include "shell/dialogs/DialogAnswers.h"
#include "shell/system/OneInstance.h"
#include "shell/system/QuitSignals.h"
#include "shell/system/StandardStreams.h"

#include <QObject>

#include <functional>
#include <memory>

class NHelioBrowserWidgetBase;
class QUrl;
class ShellApplication;
class ZeoliteHost;

namespace nheliostat::browser {
class BrowserEnvironment;
}

namespace shell {

class CloudServiceLink;
class CloudWindows;
class ControlSession;
class HandOverServer;
class OrderlyQuit;
class PageDirectory;
class PageOpener;
class RecoverOffer;
class StoryRecorder;
class TabMethods;
class UnattendedDialogs;
class UserSession;

/** The running shell: starts its parts in the order of their dependence and ends them in the reverse one. */
class ShellProgram final : public QObject
{
    Q_OBJECT
public:
    struct Setup
    {
        CommandLine line;
        HostFile host;
        QString dataDir;        //!< exists
        OneInstance instance;   //!< the owner of the data directory
        ControlStreams streams; //!< used with --control
    };

    /** Before the QApplication is made. */
    static void prepareProcess(const CommandLine& line);

    /** Needs the QApplication. */
    explicit ShellProgram(Setup setup);
    ~ShellProgram() override;

    /** Empty when the shell stands, else what could not be started. */
    QString start();

private:
    void startServices();
    QString startBrowser();
    void startWindows();
    QString loadAddOn();
    void openFirstWindow();
    void listenToLaterStarts();
    void showHandedOver(const HandOver& wish);
    void askToLeave(NHelioBrowserWidgetBase* browser, const std::function<void(bool)>& done);
    void connectControl();
    void showStories();
    void openProtocol(NHelioBrowserWidgetBase* browser, const QUrl& url, bool marked);

    Setup m_setup;
    // Destroyed from the last to the first: pages, browser environment, control, services. The add-on stays
    // loaded.
    QuitSignals m_quitSignals;
    std::unique_ptr<ZeoliteHost> m_services;
    DialogAnswers m_dialogAnswers;
    std::unique_ptr<UnattendedDialogs> m_unattendedDialogs;
    std::unique_ptr<PageDirectory> m_pages;
    std::unique_ptr<StoryRecorder> m_stories; //!< null while data collection is off
    std::unique_ptr<TabMethods> m_tabMethods;
    std::unique_ptr<ControlSession> m_control;
    std::unique_ptr<nheliostat::browser::BrowserEnvironment> m_browser;
    std::unique_ptr<UserSession> m_user;
    std::unique_ptr<CloudServiceLink> m_cloudService;
    std::unique_ptr<PageOpener> m_opener;
    std::unique_ptr<CloudWindows> m_cloudWindows;
    std::unique_ptr<ShellApplication> m_application;
    std::unique_ptr<RecoverOffer> m_recoverOffer;
    std::unique_ptr<OrderlyQuit> m_quit;
    std::unique_ptr<HandOverServer> m_laterStarts;
};

} // namespace shell
