#include "zeolite/NxWebViewJSContext.h"

#include "zeolite/bridge/ReplyWriter.h"

void NxWebViewJSContext::parse(const QString& method, const QString& callback, const QVariantMap& arguments)
{
    m_method = method;
    m_callback = callback;
    m_arguments = arguments;
    m_callOpen.reset();
}

QVariant NxWebViewJSContext::getValue(const QString& key, const QVariant& defaultValue) const
{
    const QVariant value = m_arguments.value(key);
    return value.isNull() ? defaultValue : value;
}

QVariantList NxWebViewJSContext::getArray(const QString& key) const
{
    return m_arguments.value(key).toList();
}

QVariantMap NxWebViewJSContext::getMap(const QString& key) const
{
    return m_arguments.value(key).toMap();
}

NxWebViewJSCallback NxWebViewJSContext::getCallback(const QString& key) const
{
    return {m_arguments.value(key).toString(), m_document};
}

bool NxWebViewJSContext::isPublishable() const
{
    return (m_defaultPublish || !m_reply.empty()) && !isWithheld(m_reply);
}
