#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

/**
 * One request of a web view that a registered resource handler was asked to answer.
 *
 * Threads: handlers are called on browser threads; `requestUrl` and `complete` may be called on any thread,
 * also after the handler has returned. End of life: the first `complete` ends the request; later ones are
 * ignored. When the last reference goes without an answer, the request ends with an error in the page.
 */
class IWebViewResourceProviderCallback
{
public:
    virtual ~IWebViewResourceProviderCallback() = default;

    /** The absolute URL that the page asked for, fragment removed. */
    virtual QString requestUrl() const = 0;

    /**
     * Answers with status 200.
     *
     * `answer` holds "headerMap" (QVariantMap of header name to text or bytes) and "resourceData"
     * (QByteArray, the body; empty is a valid body). The body is shared, not copied.
     */
    virtual void complete(const QVariantMap& answer) = 0;
};

using IWebViewResourceProviderCallbackPtr = std::shared_ptr<IWebViewResourceProviderCallback>;

/** Takes a request (true: it will complete the callback, now or later) or lets it go to the network (false).
 */
using NxResourceHandler = std::function<bool(const IWebViewResourceProviderCallbackPtr&)>;
