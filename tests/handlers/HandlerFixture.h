#pragma once

#include "handlers/FakeShell.h"
#include "support/FakeWebViewContainer.h"
#include "support/ServicesFixture.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QCoreApplication>
#include <QThreadPool>

/** A handler, registered as "h" with a real script object, in a shell whose user is signed in. */
class HandlerFixture : public ServicesFixture
{
protected:
    void SetUp() override
    {
        ServicesFixture::SetUp();
        start();
        shell.cloud.user.loggedIn = true;
        object = std::make_unique<NxWebViewAsynJSObject>(&container);
    }

    void setHandler(NxWebViewJSApiHandler* handler) { object->setHandler(QStringLiteral("h"), handler); }

    /** The reply to a call as compact JSON; empty when none was delivered. */
    QByteArray call(const char* method, const QJsonObject& arguments = {})
    {
        container.transport.resolved.clear();
        const QJsonObject text{
            {QStringLiteral("id"), QString::number(++m_calls)},
            {QStringLiteral("name"), QString(QStringLiteral("h.") + QLatin1String(method))},
            {QStringLiteral("args"), arguments}};
        object->fromJSAsynCall(QString::fromUtf8(QJsonDocument(text).toJson()));
        const auto& resolved = container.transport.resolved;
        return resolved.empty() ? QByteArray() : compact(resolved.back().json);
    }
    /** The text that the page's functions were called with since the last time, after all tasks have ended.
     */
    QByteArray callbacks()
    {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QByteArray texts;
        for (const auto& call : container.transport.functionCalls)
            texts += call.name.toUtf8() + ' ' + compact(call.text.toUtf8());
        container.transport.functionCalls.clear();
        return texts;
    }

    static QJsonObject json(const QByteArray& text) { return QJsonDocument::fromJson(text).object(); }
    static QByteArray compact(const QByteArray& text)
    {
        return QJsonDocument::fromJson(text).toJson(QJsonDocument::Compact);
    }

    FakeShell shell;
    FakeWebViewContainer container;
    std::unique_ptr<NxWebViewAsynJSObject> object;

private:
    int m_calls = 0;
};
