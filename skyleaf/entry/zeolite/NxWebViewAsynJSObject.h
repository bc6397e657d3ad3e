#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

#include <memory>

class NxJSApiEventHandler;
class NxWebViewContainer;
struct ScriptCall;

/**
 * The script object of a web view: takes the page's calls, routes them by name and delivers the replies.
 *
 * A call is the JSON text {"id": text, "name": text, "args": object}. `name` is a method of this object, or
 * the name of a handler and its method joined by a dot; the text after the last dot is the method. The call
 * ends exactly once in the page: with the reply object when the method returns (see
 * NxWebViewJSContext::isPublishable), later through `publishResult`, or with an error: "malformed call: …",
 * "unknown handler: …", "unknown method: …". A reply that is not publishable leaves it open.
 *
 * An answer belongs to the document that asked: replies, and texts for a callback that it named, are dropped
 * when that document is gone, with one line in the log for each document. User-interface thread.
 */
class NxWebViewAsynJSObject : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    explicit NxWebViewAsynJSObject(NxWebViewContainer* container, QObject* parent = nullptr);
    ~NxWebViewAsynJSObject() override;

    /** Invokes the method on `handler` and delivers the reply if it is publishable. */
    virtual void doCallFunction(const QString& method, NxWebViewJSContext& context,
                                NxWebViewJSApiHandler* handler);
    /** Routes a call. False, with nothing sent, when no handler or method of that name exists. */
    virtual bool handleMethod(const QString& method, NxWebViewJSContext& context, bool publish);
    virtual void setWebViewContainer(NxWebViewContainer* container);
    virtual void fromJSAsynCall(const QString& text);
    virtual void fromJSAsynCallBase64(const QString& text);
    /**
     * Calls the function `callback` of the document that is shown now, with `data`; `isBase64` says that data
     * is already encoded so. For what is no answer.
     */
    virtual void callbackToJS(const QString& callback, const QString& data, bool isBase64);
    /** The same for an answer: the document that named the function gets it, or nobody. */
    void callbackToJS(const NxWebViewJSCallback& callback, const QString& data, bool isBase64);
    /** As `fromJSAsynCall` (or Base64), at the next turn of the event loop if its document is still there. */
    virtual void queueJSAsynCall(const QString& text, bool isBase64);

    /** Delivers the context's reply object to the call, or to the named script function, that it was parsed
     * for; to nobody when its document is gone. */
    void publishResult(const NxWebViewJSContext& context);
    /** Null without a web view container. */
    NxJSApiEventHandler* eventHandler() const;
    NxWebViewContainer* webViewContainer() const;
    /** The document that is shown; 0 for none. */
    quint64 document() const;
    /**
     * Whether that document is still there to be answered. If it is not, the log says so; `answer` names what
     * is dropped.
     */
    bool isAnswerable(quint64 document, const QString& answer);
    /** The web view says that its document is gone: raises `documentEnded`. */
    void endDocument();
    /** Runs `initHandlers` unless it has run. */
    void ensureHandlers();

Q_SIGNALS:
    /** The document is gone; what was kept for its answers can be let go. Its successor may be shown already.
     */
    void documentEnded();

private:
    class Private;

    void take(const ScriptCall& call);
    QString invoke(const QString& method, NxWebViewJSContext& context, NxWebViewJSApiHandler& handler);
    void reject(const NxWebViewJSContext& context, const QString& error);
    static bool end(const NxWebViewJSContext& context);

    std::unique_ptr<Private> d;
};
