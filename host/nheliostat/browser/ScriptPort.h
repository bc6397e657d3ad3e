#pragma once

#include "zeolite/INxScriptTransport.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <functional>

class NxWebViewAsynJSObject;

namespace nheliostat::browser {

/**
 * The host's end of the script object `window.helio`: the object "port" on the view's QWebChannel.
 *
 * Page to host: the invokables. A document introduces itself with `hello`, which takes the view's secret
 * (only the script object's own script knows it) and an origin that the view was about to show, and brings a
 * fresh token. Every other message carries the token of the current document or is refused. Host to page:
 * deliveries of three texts {kind, target, text}; kinds are
 *   "r" reply of the call `target` (JSON)      "x" failure of the call `target` (text)
 *   "e" page event `target` (data text)        "f" call of the function `target` (text)
 * and the upper-case letter when `text` is the one-time URL of the real text. What is delivered to a document
 * while a call of it is being taken returns with that call, in order, behind the document's token; the rest
 * goes out as the signal `message`. The page drops what has the token of another document: a delivery may be
 * on its way when the page is left.
 *
 * A call may end the page and with it the port.
 *
 * User-interface thread.
 */
class ScriptPort final : public QObject, public INxScriptTransport
{
    Q_OBJECT
public:
    /** Texts above this size (bytes of a reply, characters of others) are published instead of sent. */
    static constexpr int largeText = 64 * 1024;
    /** Publishes a text for the documents of an origin; an invalid URL when it cannot be done. */
    using Publish =
        std::function<QUrl(const QString& origin, const QByteArray& body, const QByteArray& type)>;

    explicit ScriptPort(Publish publish, QObject* parent = nullptr);

    /** The object that takes the calls and is told when their document is gone; not owned. */
    void setScriptObject(NxWebViewAsynJSObject* object);

    /** What the script of the view says hello with. */
    const QString& secret() const { return m_secret; }
    /** The view navigates to a document of this origin; empty for one that must not speak. */
    void awaitDocument(const QString& origin);
    /** The current document is gone: what is addressed to it is dropped. */
    void forgetDocument();
    /** The origin that the view shows; deliveries to a document of another origin are dropped. */
    void setShownOrigin(const QString& origin);
    /** What the view shows has been loaded: a document of another origin is gone. */
    void endHiddenDocument();

    /** `prefix` begins all call ids of the document. */
    Q_INVOKABLE void hello(const QString& secret, const QString& origin, const QString& token,
                           const QString& prefix);
    Q_INVOKABLE QStringList fromJSAsynCall(const QString& token, const QString& text);
    Q_INVOKABLE QStringList fromJSAsynCallBase64(const QString& token, const QString& text);
    Q_INVOKABLE void emitHost(const QString& token, const QString& name, const QString& json);

    quint64 document() const override { return m_current.number; }
    void resolveCall(const QString& callId, const QByteArray& json) override;
    void rejectCall(const QString& callId, const QString& error) override;
    void callFunction(const QString& name, const QString& text) override;
    void raiseEvent(const QString& name, const QString& text) override;

Q_SIGNALS:
    /** The current document called or reported something. */
    void messageCame();
    void message(const QString& token, const QString& kind, const QString& target, const QString& text);

private:
    struct Document
    {
        QString origin;
        QString token;
        QString prefix;
        quint64 number = 0;
    };
    /** What was delivered while a call was being taken. */
    struct Collected
    {
        quint64 document;
        QStringList items;
    };
    using Take = void (NxWebViewAsynJSObject::*)(const QString&);

    void setDocument(Document document);
    bool isAdmitted(const QString& token);
    void logRefusal();
    bool hasDocument() const;
    /** The list of the current document's call that is being taken; null when there is none. */
    Collected* collected() const;
    /** Whether the document is there; if not, the log says that something was dropped. */
    bool canAnswer();
    bool isOpenTo(const QString& callId);
    QStringList takeCall(const QString& token, const QString& text, Take take);
    void deliverLarge(QChar kind, const QString& target, const QByteArray& body, const QByteArray& type);
    void deliver(QChar kind, const QString& target, const QString& text);

    Publish m_publish;
    QPointer<NxWebViewAsynJSObject> m_object;
    const QString m_secret;
    Document m_current;
    QString m_awaitedOrigin;
    QString m_shownOrigin;
    quint64 m_lastNumber = 0;
    Collected* m_collected = nullptr; //!< of the innermost call that is being taken
    bool m_refusalLogged = false;
    bool m_dropLogged = false;
};

} // namespace nheliostat::browser
