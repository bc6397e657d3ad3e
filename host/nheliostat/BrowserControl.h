#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QtGlobal>

#include <functional>

/** What a shell can do with a browser widget beyond showing it; implemented by browser widgets that can. */
class BrowserControl
{
public:
    /** The outcome of a script: the value, or an error text that is not empty. */
    struct Evaluation
    {
        QJsonValue value;
        QString error;
        bool timedOut = false; //!< the error is that the time passed
    };

    virtual ~BrowserControl() = default;

    /**
     * Runs `code`, the body of an async function, in the main frame's document of whatever origin, and
     * reports the value it returns. An exception, `timeoutMs` passing, a document that goes away and a
     * browser without a document are errors. `done` is called exactly once, on the user-interface thread.
     */
    virtual void evaluate(const QString& code, int timeoutMs,
                          std::function<void(const Evaluation&)> done) = 0;
    /** Kills the renderer process; false when there is none. */
    virtual bool crashRenderer() = 0;
    /** The gateway's id of the view; empty without a web view. */
    virtual QByteArray viewId() const = 0;
};
