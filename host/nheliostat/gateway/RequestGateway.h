#pragma once

#include "GatewayLimits.h" // beside this header, wherever that is included from
#include "zeolite/IWebViewResourceProviderCallback.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVector>

#include <functional>
#include <memory>

/** What became of one browser request; reported once per request, on a gateway thread. */
struct GatewayRequestRecord
{
    enum class AnsweredBy { Local, Network, Refused };

    QByteArray viewId; //!< empty for requests that name no view
    QByteArray method;
    QUrl url;
    AnsweredBy by = AnsweredBy::Network;
    int status = 0;   //!< 0 when the connection ended before an answer
    qint64 bytes = 0; //!< body bytes sent to the browser
    double ms = 0;    //!< from the request's last byte read to the answer's last byte written
};

/** A URL prefix with the handler that answers the requests below it. */
struct GatewayHandler
{
    QString urlPrefix; //!< compared with the absolute request URL, port left out when it is the scheme's own
    NxResourceHandler handler;
};

struct GatewayOptions
{
    /** Hosts ("docs.example.test") whose CONNECT tunnels are opened up, so that https can be answered
     * locally. */
    QStringList interceptedHosts;
    /** "host" or "host:port" to "address:port": where to connect instead of looking the host up. */
    QMap<QString, QString> resolve;
    int threads = 2;
    GatewayLimits limits;
    /** May be empty. Called on gateway threads. */
    std::function<void(const GatewayRequestRecord&)> observer;
};

/**
 * The HTTP proxy inside the shell process through which the browser fetches everything.
 *
 * It listens on a random loopback port and asks for the credentials below (407 without them). Requests carry
 * the header `viewHeader` with the id of their view; the gateway strips it before anything leaves the
 * process. A request is offered to its view's handlers, newest registration first; the first that takes it
 * answers, late answers included. Otherwise a local directory of the view serves it, otherwise it is
 * forwarded.
 *
 * Handlers run on gateway threads, one of which serves many connections: a handler that takes long hands the
 * callback on. One that throws has not taken the request. The browser keeps what handlers answer for a URL
 * that names its content by a hash, asks again before it uses other scripts, styles, fonts and images, and
 * keeps nothing else, unless the answer has a Cache-Control of its own. An empty answer to a request
 * for a page, script or style sends it to the network instead, and so does a file that a local directory
 * lacks. Local directories answer GET and HEAD only.
 *
 * All members may be called from any thread. Destruction ends every connection and joins the threads; it must
 * not happen on a gateway thread, nor while a handler waits for the destroying thread.
 */
class RequestGateway
{
public:
    /**
     * Name of the request header that carries the view id. "Sec-" keeps page scripts from setting it, and the
     * browser from asking other origins for permission to send it.
     */
    static constexpr const char* viewHeader = "Sec-Helio-View";

    /** Starts listening. Throws std::runtime_error when no port can be bound or no certificate be made. */
    explicit RequestGateway(GatewayOptions options);
    ~RequestGateway();
    RequestGateway(const RequestGateway&) = delete;
    RequestGateway& operator=(const RequestGateway&) = delete;

    quint16 port() const;
    QString user() const;
    QString password() const;
    /** The DER form of the certificate shown for intercepted hosts; the only one the browser may accept for
     * them. */
    QByteArray certificateDer() const;

    /** A new view with an unguessable id. */
    QByteArray openView();
    /** Drops the view's registrations; its requests that wait for a handler end with an error. */
    void closeView(const QByteArray& viewId);

    // An unknown view makes the following do nothing.

    /** The last of `handlers` counts as the newest. */
    void addHandlers(const QByteArray& viewId, const QVector<GatewayHandler>& handlers);
    /**
     * Removes every handler with one of these prefixes. Requests already taken by them may still be
     * completed, and a call under way on a gateway thread may still come to its end.
     */
    void removeHandlers(const QByteArray& viewId, const QStringList& urlPrefixes);
    void clearHandlers(const QByteArray& viewId);

    /**
     * Files below `directory` answer requests below `urlPrefix`, the longest prefix first; a missing file and
     * a symbolic link out of the directory are a 404. The browser keeps files, but asks whether they changed
     * unless their names hold a hash of the content.
     */
    void setLocalDirectory(const QByteArray& viewId, const QString& urlPrefix, const QString& directory);
    void removeLocalDirectory(const QByteArray& viewId, const QString& urlPrefix);

    /**
     * Publishes `body` for exactly one GET by the view and returns its URL below `origin`
     * ("https://docs.example.test"). Neither handlers nor directories see requests for it, and it never goes
     * to the network. Unfetched replies are dropped with the view.
     * Returns an empty URL when the view is not open or `origin` is not http or https.
     */
    QUrl publishReply(const QByteArray& viewId, const QUrl& origin, const QByteArray& body,
                      const QByteArray& contentType);

private:
    class Private;
    std::unique_ptr<Private> d;
};
