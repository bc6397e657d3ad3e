#pragma once

#include "zeolite/NxWebViewJSContext.h"

#include <QHash>
#include <QObject>
#include <QPair>
#include <QPointer>

class NxWebViewAsynJSObject;

/**
 * A set of script methods. Every slot `name(NxWebViewJSContext&)` of a derived class is a method that the
 * page can call by that name; nothing else is.
 */
class NxWebViewJSApiHandler : public QObject
{
    Q_OBJECT
public:
    /** `scriptObject` is not owned; it outlives the handler (usually it is its parent). Null for a script
     * object. */
    explicit NxWebViewJSApiHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject = nullptr);

    /** Registers the named handlers; called once, before the first call is routed. */
    virtual void initHandlers();
    /** `handler` is not owned; a registration ends with it. A name registered again is replaced. */
    virtual void setHandler(const QString& name, NxWebViewJSApiHandler* handler);
    /** The registered name and handler for an exact name; an empty name and null when there is none. */
    virtual QPair<QString, NxWebViewJSApiHandler*> findHandler(const QString& name) const;
    /** Whether `initHandlers` has run. */
    virtual bool isHandlersValid() const;

    /** All arguments of the call. With `withDefaults`, null arguments are left out. */
    static QVariantMap parseContextArgs(const NxWebViewJSContext& context, bool withDefaults);

protected:
    NxWebViewAsynJSObject* scriptObject() const { return m_scriptObject; }

private:
    NxWebViewAsynJSObject* m_scriptObject;
    QHash<QString, QPointer<NxWebViewJSApiHandler>> m_handlers;
    bool m_handlersValid = false;
};
