#include "nheliostat/browser/ScriptPort.h"

#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/browser/ScriptText.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QScopedValueRollback>

namespace nheliostat::browser {

namespace {

const QByteArray jsonType = QByteArrayLiteral("application/json");
const QByteArray textType = QByteArrayLiteral("text/plain; charset=utf-8");
const QString logTag = QStringLiteral("ScriptPort");

QStringList failure(const QString& text)
{
    return {QStringLiteral("x"), QString(), text};
}

} // namespace

ScriptPort::ScriptPort(Publish publish, QObject* parent)
    : QObject(parent)
    , m_publish(std::move(publish))
    , m_secret(freshSecret())
{
}

void ScriptPort::setScriptObject(NxWebViewAsynJSObject* object)
{
    m_object = object;
}

void ScriptPort::awaitDocument(const QString& origin)
{
    m_awaitedOrigin = origin;
    m_refusalLogged = false;
}

void ScriptPort::forgetDocument()
{
    m_current = {};
}

void ScriptPort::setShownOrigin(const QString& origin)
{
    m_shownOrigin = origin;
}

void ScriptPort::hello(const QString& secret, const QString& origin, const QString& token,
                       const QString& prefix)
{
    const bool isExpected = !origin.isEmpty() && (origin == m_awaitedOrigin || origin == m_current.origin);
    if (secret != m_secret || !isExpected || token.isEmpty() || prefix.isEmpty()) {
        logRefusal();
        return;
    }
    m_current = {origin, token, prefix};
    m_awaitedOrigin.clear();
    m_shownOrigin = origin;
}

QStringList ScriptPort::fromJSAsynCall(const QString& token, const QString& text)
{
    return takeCall(token, text, &NxWebViewAsynJSObject::fromJSAsynCall);
}

QStringList ScriptPort::fromJSAsynCallBase64(const QString& token, const QString& text)
{
    return takeCall(token, text, &NxWebViewAsynJSObject::fromJSAsynCallBase64);
}

QStringList ScriptPort::takeCall(const QString& token, const QString& text, Take take)
{
    if (!isAdmitted(token))
        return failure(QStringLiteral("refused: not a call of this document"));
    Q_EMIT messageCame();
    if (!m_object)
        return failure(QStringLiteral("no script object"));
    QStringList collected;
    const QScopedValueRollback<QStringList*> taking(m_collected, &collected);
    (m_object->*take)(text);
    return collected;
}

void ScriptPort::emitHost(const QString& token, const QString& name, const QString& json)
{
    if (!isAdmitted(token))
        return;
    Q_EMIT messageCame();
    auto* const api = qobject_cast<NHelioCommonJSAPI*>(m_object.data());
    const QJsonDocument data = QJsonDocument::fromJson(json.toUtf8());
    if (!api || !data.isObject() || !api->reportFromScript(name, data.object()))
        NxLoggerLite::writeWarning(logTag, QStringLiteral("report not taken: ") + name.left(100));
}

void ScriptPort::resolveCall(const QString& callId, const QByteArray& json)
{
    if (!isOpenTo(callId))
        return;
    if (json.size() > largeText)
        deliverLarge(QLatin1Char('r'), callId, json, jsonType);
    else
        deliver(QLatin1Char('r'), callId, QString::fromUtf8(json));
}

void ScriptPort::rejectCall(const QString& callId, const QString& error)
{
    if (isOpenTo(callId))
        deliver(QLatin1Char('x'), callId, error);
}

void ScriptPort::callFunction(const QString& name, const QString& text)
{
    if (!hasDocument())
        return;
    if (text.size() > largeText)
        deliverLarge(QLatin1Char('f'), name, text.toUtf8(), textType);
    else
        deliver(QLatin1Char('f'), name, text);
}

void ScriptPort::raiseEvent(const QString& name, const QString& text)
{
    if (!hasDocument())
        return;
    if (text.size() > largeText)
        deliverLarge(QLatin1Char('e'), name, text.toUtf8(), textType);
    else
        deliver(QLatin1Char('e'), name, text);
}

bool ScriptPort::isAdmitted(const QString& token)
{
    if (!token.isEmpty() && token == m_current.token)
        return true;
    logRefusal();
    return false;
}

void ScriptPort::logRefusal()
{
    // Once per navigation: a page that goes on asking must not fill the log.
    if (!m_refusalLogged)
        NxLoggerLite::writeWarning(logTag, QStringLiteral("message without the document's token refused"));
    m_refusalLogged = true;
}

bool ScriptPort::hasDocument() const
{
    return !m_current.token.isEmpty() && m_current.origin == m_shownOrigin;
}

bool ScriptPort::isOpenTo(const QString& callId) const
{
    return hasDocument() && (callId.isEmpty() ? m_collected != nullptr : callId.startsWith(m_current.prefix));
}

void ScriptPort::deliverLarge(QChar kind, const QString& target, const QByteArray& body,
                              const QByteArray& type)
{
    const QUrl url = m_publish(m_current.origin, body, type);
    if (url.isValid())
        deliver(kind.toUpper(), target, url.toString(QUrl::FullyEncoded));
    else
        deliver(kind, target, QString::fromUtf8(body));
}

void ScriptPort::deliver(QChar kind, const QString& target, const QString& text)
{
    if (m_collected)
        *m_collected << QString(kind) << target << text;
    else
        Q_EMIT message(QString(kind), target, text);
}

} // namespace nheliostat::browser
