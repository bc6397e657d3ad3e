#include "zeolite/NxJSApiEventHandler.h"

#include "zeolite/INxScriptTransport.h"

void NxJSApiEventHandler::raiseEvent(const QString& name, const QString& data)
{
    m_transport.raiseEvent(name, data);
}
