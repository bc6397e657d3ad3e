#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

#include <QPointer>

/** The script handler "docs.print": printing through the suite. User-interface thread. */
class NPrintFileHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    /** `host` is the page's widget, the parent of the file dialog; may be null. */
    NPrintFileHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host);

    void setHost(QObject* host) { m_host = host; }

public Q_SLOTS:
    void getPrintFileTempPath(NxWebViewJSContext& context);
    void selectPrintFileSavePath(NxWebViewJSContext& context);
    void isSupportVltDocsPrint(NxWebViewJSContext& context);
    void printFileByZeo(NxWebViewJSContext& context);

private:
    void raisePrintResult(quint64 document, const QJsonObject& result) const;

    QPointer<QObject> m_host;
};
