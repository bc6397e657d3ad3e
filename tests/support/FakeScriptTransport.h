#pragma once

#include "zeolite/INxScriptTransport.h"

#include <vector>

/** Records what a script object sends to its document. */
class FakeScriptTransport final : public INxScriptTransport
{
public:
    struct Resolved
    {
        QString callId;
        QByteArray json;
    };
    /** A text addressed by a name: a failed call and its error, a function or an event and its text. */
    struct Named
    {
        QString name;
        QString text;
    };

    quint64 document() const override { return shownDocument; }
    void resolveCall(const QString& callId, const QByteArray& json) override
    {
        resolved.push_back({callId, json});
    }
    void rejectCall(const QString& callId, const QString& error) override
    {
        rejected.push_back({callId, error});
    }
    void callFunction(const QString& name, const QString& text) override
    {
        functionCalls.push_back({name, text});
    }
    void raiseEvent(const QString& name, const QString& text) override { events.push_back({name, text}); }

    quint64 shownDocument = 1;
    std::vector<Resolved> resolved;
    std::vector<Named> rejected;
    std::vector<Named> functionCalls;
    std::vector<Named> events;
};
