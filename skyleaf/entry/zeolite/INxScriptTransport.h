#pragma once

#include <QByteArray>
#include <QString>

/**
 * The way from a script object to the document that is shown in its web view. User-interface thread.
 *
 * What is addressed to a document that is gone (navigation, crash, close) is dropped.
 */
class INxScriptTransport
{
public:
    virtual ~INxScriptTransport() = default;

    /**
     * The number of the document that calls come from and deliveries go to; no other document of the view has
     * it. It is another one after each navigation, reload or crash, and stays in navigations within the
     * document. 0 for none.
     */
    virtual quint64 document() const = 0;

    /** Settles the call with a reply object (JSON, UTF-8). An empty id means the call that is being
     * delivered. */
    virtual void resolveCall(const QString& callId, const QByteArray& json) = 0;
    /** Settles the call with a failure. An empty id means the call that is being delivered. */
    virtual void rejectCall(const QString& callId, const QString& error) = 0;
    /** Calls the function `name` of the page's window with one argument, the text; no function, no call. */
    virtual void callFunction(const QString& name, const QString& text) = 0;
    /** Raises a page event. */
    virtual void raiseEvent(const QString& name, const QString& text) = 0;
};
