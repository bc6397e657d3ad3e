#include "zeolite/bridge/ScriptMethods.h"

#include "zeolite/NxWebViewJSApiHandler.h"

namespace {

bool isScriptMethod(const QMetaMethod& method)
{
    return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public &&
           method.methodSignature() == method.name() + "(NxWebViewJSContext&)";
}

} // namespace

QMetaMethod ScriptMethods::find(const NxWebViewJSApiHandler& handler, const QString& name)
{
    const QMetaObject* const metaObject = handler.metaObject();
    auto methods = m_byClass.find(metaObject);
    if (methods == m_byClass.end()) {
        methods = m_byClass.insert(metaObject, {});
        // From the bases to the class itself, so that a slot declared again is the one that is called.
        for (int i = NxWebViewJSApiHandler::staticMetaObject.methodCount(); i < metaObject->methodCount();
             ++i) {
            const QMetaMethod method = metaObject->method(i);
            if (isScriptMethod(method))
                methods->insert(QString::fromLatin1(method.name()), method);
        }
    }
    return methods->value(name);
}
