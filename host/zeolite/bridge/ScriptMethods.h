#pragma once

#include <QHash>
#include <QMetaMethod>
#include <QString>

class NxWebViewJSApiHandler;

/**
 * What the page may call on handlers: the public slots `name(NxWebViewJSContext&)` that their classes
 * declare. Looked up once per class.
 */
class ScriptMethods
{
public:
    /** Not valid when the handler has no such method. */
    QMetaMethod find(const NxWebViewJSApiHandler& handler, const QString& name);

private:
    using Methods = QHash<QString, QMetaMethod>;

    QHash<const QMetaObject*, Methods> m_byClass;
};
