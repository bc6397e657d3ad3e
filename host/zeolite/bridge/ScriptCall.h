#pragma once

#include <QString>
#include <QVariantMap>

/** A call of the page: {"id": text, "name": text, "args": object}; "args" may be left out. */
struct ScriptCall
{
    /** The longest call text that is taken, in characters. */
    static constexpr int longestText = 64 * 1024 * 1024;

    QString id; //!< also set in a malformed call whose id could be read
    QString name;
    QVariantMap arguments;
    QString error; //!< why the call is malformed; empty when it is well-formed
};

ScriptCall parseScriptCall(const QString& text);
/** `text` is the Base64 of the call text in UTF-8. */
ScriptCall parseScriptCallBase64(const QString& text);
