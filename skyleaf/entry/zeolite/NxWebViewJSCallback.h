#pragma once

#include <QString>

/** A function of the page that gets an answer later: its name, and the document that gave it. */
struct NxWebViewJSCallback
{
    bool isEmpty() const { return name.isEmpty(); }

    QString name;
    quint64 document = 0; //!< see INxScriptTransport::document
};
