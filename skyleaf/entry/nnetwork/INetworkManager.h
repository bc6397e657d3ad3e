#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>

class QObject;

/** The request that a reply belongs to. */
class INetworkRequest
{
public:
    virtual ~INetworkRequest() = default;
    virtual QUrl url() const = 0;
};

/** The end of a request. Valid during the completion callback. */
class INetworkReply
{
public:
    virtual ~INetworkReply() = default;

    /** Header name to value (text). Several "Set-Cookie" lines are joined by line feeds, lines of other names
     * by commas. */
    virtual QVariantMap headers() const = 0;
    /** 0 for no error; a status of 400 and above is an error too. */
    virtual int errorCode() const = 0;
    /** 0 when no status line arrived. */
    virtual int httpStatusCode() const = 0;
    virtual QByteArray body() const = 0;
    /** Null when the request could not be made. Owned by the reply. */
    virtual const INetworkRequest* request() const = 0;
    /** From the first byte sent to the last byte received, in milliseconds. */
    virtual qint64 networkTimeMs() const = 0;
};

/**
 * Sends HTTP requests. User-interface thread.
 *
 * Header values are text or bytes. A completion is called once, at a later turn of the event loop, unless the
 * manager is released first: its requests then end without completion. Redirects are followed within the
 * origin only.
 */
class INetworkManager
{
public:
    using Completion = std::function<void(INetworkReply*)>;

    virtual ~INetworkManager() = default;

    /** Names the module whose requests these are; it appears in the log. Called before the first request. */
    virtual void setTag(const QString& tag) = 0;
    virtual void get(const QString& url, const QVariantMap& headers, Completion completion) = 0;
    /** `context` (may be null): the completion is dropped when it is destroyed first. */
    virtual void post(const QString& url, const QVariantMap& headers, const QByteArray& body,
                      QObject* context, Completion completion) = 0;
};

/**
 * The export "createNetworkManager" of the library "nnetwork". Fills the pointer with a manager that the
 * library deletes; false, with the pointer untouched, when it cannot. The four texts configure it; empty ones
 * take the defaults.
 */
using NCreateNetworkManager = bool (*)(std::shared_ptr<INetworkManager>* manager, const QString& proxy,
                                       const QString& userAgent, const QString& cacheDir,
                                       const QString& options);
