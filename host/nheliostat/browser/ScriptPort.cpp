#include "nheliostat/browser/ScriptPort.h"

#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/browser/ScriptText.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace nheliostat::browser {

namespace {

const QByteArray jsonType = QByteArrayLiteral("application/json");
const QByteArray textType = QByteArrayLiteral("text/plain; charset=utf-8");
const QString logTag = QStringLiteral("ScriptPort");

QStringList failure(const QString& token, const QString& text)
{
    return {token, QStringLiteral("x"), QString(), text};
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
    m_dropLogged = false;
}

void ScriptPort::forgetDocument()
{
    setDocument({});
}

void ScriptPort::setShownOrigin(const QString& origin)
{
    m_shownOrigin = origin;
}

void ScriptPort::endHiddenDocument()
{
    if (m_shownOrigin != m_current.origin)
        forgetDocument();
}

void ScriptPort::hello(const QString& secret, const QString& origin, const QString& token,
                       const QString& prefix)
{
    const bool isExpected = !origin.isEmpty() && (origin == m_awaitedOrigin || origin == m_current.origin);
    if (secret != m_secret || !isExpected || token.isEmpty() || prefix.isEmpty()) {
        logRefusal();
        return;
    }
    m_awaitedOrigin.clear();
    m_shownOrigin = origin;
    setDocument({origin, token, prefix, ++m_lastNumber});
}

void ScriptPort::setDocument(Document document)
{
    const bool isEnd = m_current.number != 0;
    m_current = std::move(document);
    if (isEnd && m_object)
        m_object->endDocument();
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
        return failure(token, QStringLiteral("refused: not a call of this document"));
    Q_EMIT messageCame();
    if (!m_object)
        return failure(token, QStringLiteral("no script object"));
    Collected collected{m_current.number, {token}};
    Collected* const outer = std::exchange(m_collected, &collected);
    const QPointer<ScriptPort> self(this);
    (m_object->*take)(text);
    if (self)
        m_collected = outer;
    return collected.items;
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
    if (!canAnswer())
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

ScriptPort::Collected* ScriptPort::collected() const
{
    return m_collected && m_collected->document == m_current.number ? m_collected : nullptr;
}

bool ScriptPort::canAnswer()
{
    if (hasDocument())
        return true;
    if (!std::exchange(m_dropLogged, true))
        NxLoggerLite::writeInfo(logTag,
                                QStringLiteral("answers to a document that is not shown are dropped"));
    return false;
}

bool ScriptPort::isOpenTo(const QString& callId)
{
    return canAnswer() && (callId.isEmpty() ? collected() != nullptr : callId.startsWith(m_current.prefix));
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
    if (Collected* const list = collected())
        list->items << QString(kind) << target << text;
    else
        Q_EMIT message(m_current.token, QString(kind), target, text);
}

} // namespace nheliostat::browser
