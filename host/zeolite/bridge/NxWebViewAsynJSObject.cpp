#include "zeolite/NxWebViewAsynJSObject.h"

#include <exception>

#include <QThread>

#include "zeolite/INxScriptTransport.h"
#include "zeolite/NxJSApiEventHandler.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewContainer.h"
#include "zeolite/bridge/ReplyWriter.h"
#include "zeolite/bridge/ScriptCall.h"
#include "zeolite/bridge/ScriptMethods.h"

namespace {

/** Where a call name points: "handler.method", the method after the last dot, or "method" of the script
 * object. */
struct Address
{
    explicit Address(const QString& name)
    {
        const int dot = name.lastIndexOf(QLatin1Char('.'));
        hasHandler = dot >= 0;
        handler = name.left(qMax(dot, 0));
        method = name.mid(dot + 1);
    }

    bool hasHandler;
    QString handler;
    QString method;
};

const QString logTag = QStringLiteral("zeolite");
constexpr int longestNameInLog = 100;

void logWarning(const QString& text, const char* where)
{
    NxLoggerLite::writeWarning(logTag, QStringLiteral("%1--%2").arg(text, QLatin1String(where)));
}

} // namespace

class NxWebViewAsynJSObject::Private
{
public:
    QPointer<NxWebViewContainer> container;
    std::unique_ptr<NxJSApiEventHandler> eventHandler;
    ScriptMethods methods;
    quint64 goneDocument = 0; //!< of which the log says that its answers are dropped
};

NxWebViewAsynJSObject::NxWebViewAsynJSObject(NxWebViewContainer* container, QObject* parent)
    : NxWebViewJSApiHandler(parent)
    , d(std::make_unique<Private>())
{
    NxWebViewAsynJSObject::setWebViewContainer(container);
}

NxWebViewAsynJSObject::~NxWebViewAsynJSObject() = default;

void NxWebViewAsynJSObject::doCallFunction(const QString& method, NxWebViewJSContext& context,
                                           NxWebViewJSApiHandler* handler)
{
    const QPointer<NxWebViewAsynJSObject> self(this); // a method may end the page and with it this object
    const QString error = invoke(method, context, *handler);
    if (!self)
        return;
    if (!error.isEmpty())
        reject(context, error);
    else if (context.isPublishable())
        publishResult(context);
}

bool NxWebViewAsynJSObject::handleMethod(const QString& method, NxWebViewJSContext& context, bool publish)
{
    ensureHandlers();
    const Address address(method);
    NxWebViewJSApiHandler* const handler = address.hasHandler ? findHandler(address.handler).second : this;
    if (!handler || !d->methods.find(*handler, address.method).isValid())
        return false;
    if (!context.m_callOpen)
        context.m_callOpen = std::make_shared<bool>(true);
    if (!context.m_document)
        context.m_document = document();
    if (publish)
        doCallFunction(address.method, context, handler);
    else
        invoke(address.method, context, *handler);
    return true;
}

void NxWebViewAsynJSObject::setWebViewContainer(NxWebViewContainer* container)
{
    d->container = container;
    d->eventHandler =
        container ? std::make_unique<NxJSApiEventHandler>(container->scriptTransport()) : nullptr;
}

void NxWebViewAsynJSObject::fromJSAsynCall(const QString& text)
{
    take(parseScriptCall(text));
}

void NxWebViewAsynJSObject::fromJSAsynCallBase64(const QString& text)
{
    take(parseScriptCallBase64(text));
}

void NxWebViewAsynJSObject::callbackToJS(const QString& callback, const QString& data, bool isBase64)
{
    callbackToJS(NxWebViewJSCallback{callback, document()}, data, isBase64);
}

void NxWebViewAsynJSObject::callbackToJS(const NxWebViewJSCallback& callback, const QString& data,
                                         bool isBase64)
{
    if (callback.isEmpty() || !isAnswerable(callback.document, callback.name))
        return;
    const QString text = isBase64 ? QString::fromUtf8(QByteArray::fromBase64(data.toLatin1())) : data;
    d->container->scriptTransport().callFunction(callback.name, text);
}

void NxWebViewAsynJSObject::queueJSAsynCall(const QString& text, bool isBase64)
{
    const auto call = [this, text, isBase64, caller = document()] {
        if (isAnswerable(caller, QStringLiteral("a queued call")))
            isBase64 ? fromJSAsynCallBase64(text) : fromJSAsynCall(text);
    };
    QMetaObject::invokeMethod(this, call, Qt::QueuedConnection);
}

void NxWebViewAsynJSObject::publishResult(const NxWebViewJSContext& context)
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (isWithheld(context.reply()))
        return;
    const bool isCall = context.m_callOpen != nullptr;
    if (isCall ? !end(context) : context.callback().isEmpty())
        return;
    if (!isAnswerable(context.document(), context.method()))
        return;

    const bool isDefault = context.reply().empty() && context.defaultPublishResult();
    const QByteArray json =
        isDefault ? QByteArrayLiteral("{\"callstatus\":\"ok\"}") : writeReply(context.reply());
    INxScriptTransport& transport = d->container->scriptTransport();
    if (isCall)
        transport.resolveCall(context.callback(), json);
    else
        transport.callFunction(context.callback(), QString::fromUtf8(json));
}

NxJSApiEventHandler* NxWebViewAsynJSObject::eventHandler() const
{
    return d->container ? d->eventHandler.get() : nullptr;
}

NxWebViewContainer* NxWebViewAsynJSObject::webViewContainer() const
{
    return d->container;
}

quint64 NxWebViewAsynJSObject::document() const
{
    return d->container ? d->container->scriptTransport().document() : 0;
}

bool NxWebViewAsynJSObject::isAnswerable(quint64 document, const QString& answer)
{
    if (!d->container)
        return false;
    if (document != 0 && document == this->document())
        return true;
    if (std::exchange(d->goneDocument, document) != document) {
        NxLoggerLite::writeInfo(
            logTag,
            QStringLiteral("the document that asked is gone, its answers are dropped: %1--%2")
                .arg(answer.left(longestNameInLog), QLatin1String("NxWebViewAsynJSObject::isAnswerable")));
    }
    return false;
}

void NxWebViewAsynJSObject::endDocument()
{
    Q_EMIT documentEnded();
}

void NxWebViewAsynJSObject::ensureHandlers()
{
    if (!isHandlersValid())
        initHandlers();
}

void NxWebViewAsynJSObject::take(const ScriptCall& call)
{
    Q_ASSERT(thread() == QThread::currentThread());
    NxWebViewJSContext context;
    context.parse(call.name, call.id, call.arguments);
    context.m_document = document();
    context.m_callOpen = std::make_shared<bool>(true);
    if (!call.error.isEmpty()) {
        reject(context, QStringLiteral("malformed call: ") + call.error);
        return;
    }
    const QPointer<NxWebViewAsynJSObject> self(this);
    if (handleMethod(call.name, context, true) || !self)
        return;
    const Address address(call.name);
    if (address.hasHandler && !findHandler(address.handler).second)
        reject(context, QStringLiteral("unknown handler: ") + address.handler);
    else
        reject(context, QStringLiteral("unknown method: ") + call.name);
}

/** Calls the method; answers why it could not be called or failed, empty when it returned. */
QString NxWebViewAsynJSObject::invoke(const QString& method, NxWebViewJSContext& context,
                                      NxWebViewJSApiHandler& handler)
{
    const QMetaMethod slot = d->methods.find(handler, method);
    if (!slot.isValid())
        return QStringLiteral("unknown method: ") + method;
    try {
        slot.invoke(&handler, Qt::DirectConnection, Q_ARG(NxWebViewJSContext&, context));
    } catch (const std::exception& error) { // JsonCpp throws when a reply is used against its type
        QString reason = QStringLiteral("call failed: ") + QString::fromUtf8(error.what());
        logWarning(method + QLatin1String(": ") + reason, "NxWebViewAsynJSObject::doCallFunction");
        return reason;
    }
    return {};
}

void NxWebViewAsynJSObject::reject(const NxWebViewJSContext& context, const QString& error)
{
    logWarning(error.left(200), "NxWebViewAsynJSObject::fromJSAsynCall");
    if (end(context) && isAnswerable(context.document(), context.method()))
        d->container->scriptTransport().rejectCall(context.callback(), error);
}

/** Ends the context's call. False when it has ended before, or when the context is of no call. */
bool NxWebViewAsynJSObject::end(const NxWebViewJSContext& context)
{
    return context.m_callOpen && std::exchange(*context.m_callOpen, false);
}
