#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QMap>

#include <memory>

/** The script methods that every web application of the shell is offered. */
class NHelioCommonJSAPI : public NxWebViewAsynJSObject
{
    Q_OBJECT
public:
    explicit NHelioCommonJSAPI(NxWebViewContainer* container, QObject* parent = nullptr);

    /** Asks the user to sign in; answers "callstatus". */
    void login(NxWebViewJSContext& context);
    void logout(NxWebViewJSContext& context);
    /** Opens the argument "url" in the shell. */
    void openUrlTava(NxWebViewJSContext& context);

    /**
     * What the web application reports to the shell: "webFileReady" and "shareDlgReady" with text members,
     * "menuItemDataReady" with an object, "unsavedChanges" with the flag "unsaved": whether the document's
     * end would lose something. False for another name.
     */
    bool reportFromScript(const QString& name, const QJsonObject& data);

public Q_SLOTS:
    virtual void getCurSkin(NxWebViewJSContext& context);
    virtual void getSkinIcon(NxWebViewJSContext& context);
    /** The page's file was renamed: raises the page event "namechange". */
    void onNotifyNameChange(const QString& name);

Q_SIGNALS:
    void sig_webFileReady(const QMap<QString, QString>& info);
    void sig_shareDlgReady(const QMap<QString, QString>& info);
    void sig_menuItemDataReady(const QJsonObject& data);
    void sig_unsavedChanges(bool unsaved);
    void sig_closeCooperationResult(const QString& fileId, bool closed);
    /** The script asks the shell to sign the user in or out, or to open a URL. */
    void loginRequested();
    void logoutRequested();
    void openUrlRequested(const QString& url);
};

/** Makes the host's script handlers for a browser's page. */
class NHelioBrowserPageProxy
{
public:
    explicit NHelioBrowserPageProxy(NHelioBrowserWidgetBase* browser);
    /** A new handler of a known name ("NHelioBrowserDocDriveApiHandler"), owned by `parent`, or null. */
    QObject* generateHandler(const QString& name, QObject* parent, NxWebViewAsynJSObject* scriptObject);

private:
    QPointer<NHelioBrowserWidgetBase> m_browser;
};

/** Messages between the page and the window's dock panels. */
class NHelioDockPanelJsHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;
    void notifyPageLoadFinished(bool ok);
    void updateWebFileInfo(const QMap<QString, QString>& info);

public Q_SLOTS:
    /** Answers what the dock panels know of the page: "loaded" and "fileInfo". */
    void getPageInfo(NxWebViewJSContext& context);

private:
    bool m_loaded = false;
    QMap<QString, QString> m_fileInfo;
};
