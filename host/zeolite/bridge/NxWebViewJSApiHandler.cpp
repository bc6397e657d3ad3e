#include "zeolite/NxWebViewJSApiHandler.h"

#include "zeolite/NxWebViewAsynJSObject.h"

NxWebViewJSApiHandler::NxWebViewJSApiHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject)
    : QObject(parent)
    , m_scriptObject(scriptObject)
{
}

void NxWebViewJSApiHandler::initHandlers()
{
    m_handlersValid = true;
}

void NxWebViewJSApiHandler::setHandler(const QString& name, NxWebViewJSApiHandler* handler)
{
    if (handler)
        m_handlers.insert(name, handler);
    else
        m_handlers.remove(name);
}

QPair<QString, NxWebViewJSApiHandler*> NxWebViewJSApiHandler::findHandler(const QString& name) const
{
    NxWebViewJSApiHandler* const handler = m_handlers.value(name);
    return handler ? qMakePair(name, handler) : QPair<QString, NxWebViewJSApiHandler*>(QString(), nullptr);
}

bool NxWebViewJSApiHandler::isHandlersValid() const
{
    return m_handlersValid;
}

QVariantMap NxWebViewJSApiHandler::parseContextArgs(const NxWebViewJSContext& context, bool withDefaults)
{
    if (!withDefaults)
        return context.arguments();
    QVariantMap arguments;
    for (auto argument = context.arguments().begin(); argument != context.arguments().end(); ++argument) {
        if (argument->userType() != QMetaType::Nullptr && argument->isValid())
            arguments.insert(argument.key(), argument.value());
    }
    return arguments;
}
