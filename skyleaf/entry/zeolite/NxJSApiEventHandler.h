#pragma once

#include <QString>

class INxScriptTransport;

/** Raises named page events with a data text. Owned by the script object. */
class NxJSApiEventHandler
{
public:
    explicit NxJSApiEventHandler(INxScriptTransport& transport)
        : m_transport(transport)
    {
    }
    void raiseEvent(const QString& name, const QString& data);

private:
    INxScriptTransport& m_transport;
};
