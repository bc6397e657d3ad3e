#pragma once

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
    /** Hosts ("docs.example.test") whose CONNECT tunnels are opened up, so that https can be answered locally. */
    QStringList interceptedHosts;
    /** "host" or "host:port" to "address:port": where to connect instead of looking the host up. */
    QMap<QString, QString> resolve;
    int threads = 2;
    /** May be empty. Called on gateway threads. */
    std::function<void(const GatewayRequestRecord&)> observer;
};

/**
 * The HTTP proxy inside the shell process through which the browser fetches everything.
 *
 * It listens on a random loopback port and asks for the credentials below (407 without them). Requests carry the
 * header `viewHeader` with the id of their view; the gateway strips it before anything leaves the process. A
 * request is offered to its view's handlers, newest registration first; the first that takes it answers, late
 * answers included. Otherwise a local directory of the view serves it, otherwise it is forwarded.
 *
 * All members may be called from any thread. Destruction ends every connection and joins the threads.
 */
class RequestGateway
{
public:
    /** Name of the request header that carries the view id. */
    static constexpr const char* viewHeader = "X-Helio-View";

    /** Starts listening. Throws std::runtime_error when no port can be bound or no certificate be made. */
    explicit RequestGateway(GatewayOptions options);
    ~RequestGateway();
    RequestGateway(const RequestGateway&) = delete;
    RequestGateway& operator=(const RequestGateway&) = delete;

    quint16 port() const;
    QString user() const;
    QString password() const;
    /** The DER form of the certificate shown for intercepted hosts; the only one the browser may accept for them. */
    QByteArray certificateDer() const;

    /** A new view with an unguessable id. */
    QByteArray openView();
    /** Drops the view's registrations; its waiting requests end with an error. */
    void closeView(const QByteArray& viewId);

    void addHandlers(const QByteArray& viewId, const QVector<GatewayHandler>& handlers);
    /** Requests already taken by a removed handler may still be completed. */
    void removeHandlers(const QByteArray& viewId, const QStringList& urlPrefixes);
    void clearHandlers(const QByteArray& viewId);

    /** Files below `directory` answer requests below `urlPrefix`; a missing file is a 404. */
    void setLocalDirectory(const QByteArray& viewId, const QString& urlPrefix, const QString& directory);
    void removeLocalDirectory(const QByteArray& viewId, const QString& urlPrefix);

    /**
     * Publishes `body` for exactly one GET by the view and returns its URL below `origin`
     * ("https://docs.example.test"). Unfetched replies are dropped with the view.
     */
    QUrl publishReply(const QByteArray& viewId, const QUrl& origin, const QByteArray& body,
                      const QByteArray& contentType);

private:
    class Private;
    std::unique_ptr<Private> d;
};
