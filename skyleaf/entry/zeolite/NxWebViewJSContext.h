#pragma once

#include "zeolite/NxWebViewJSCallback.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <json/value.h>

#include <memory>

/**
 * One call of the page's script: its method, its arguments and the reply under construction. A value: a
 * method that answers later keeps a copy and publishes that.
 */
class NxWebViewJSContext
{
public:
    NxWebViewJSContext() = default;
    /** For an answer to that document which is of no call. */
    explicit NxWebViewJSContext(quint64 document)
        : m_document(document)
    {
    }

    /** Fills the context: the method called, the call (or named script function) that gets the reply, the
     * arguments. */
    void parse(const QString& method, const QString& callback, const QVariantMap& arguments);

    QString method() const { return m_method; }
    QString callback() const { return m_callback; }
    const QVariantMap& arguments() const { return m_arguments; }
    /** The document that called, to which the reply goes; 0 for none. */
    quint64 document() const { return m_document; }

    QVariant getValue(const QString& key, const QVariant& defaultValue = {}) const;
    QVariantList getArray(const QString& key) const;
    QVariantMap getMap(const QString& key) const;
    /** The function that an argument names for a later answer to the document that called. */
    NxWebViewJSCallback getCallback(const QString& key) const;

    /** The reply object (a JSON object); methods write their members into it. */
    Json::Value& reply() { return m_reply; }
    const Json::Value& reply() const { return m_reply; }

    /** Asks for a reply although no member is written: {"callstatus": "ok"}. */
    void setDefaultPublishResult(bool publish) { m_defaultPublish = publish; }
    bool defaultPublishResult() const { return m_defaultPublish; }

    /**
     * Whether the reply goes to the page when the method returns: it has a member or the default was asked
     * for, and it does not hold "ignoreThisJsCallback" = "true".
     */
    bool isPublishable() const;

private:
    friend class NxWebViewAsynJSObject; // opens and ends the call

    QString m_method;
    QString m_callback;
    QVariantMap m_arguments;
    quint64 m_document = 0;
    Json::Value m_reply{Json::objectValue};
    bool m_defaultPublish = false;
    /** Shared by the copies of the context: whether the call still waits for its end. Null when it is of no
     * call. */
    std::shared_ptr<bool> m_callOpen;
};
