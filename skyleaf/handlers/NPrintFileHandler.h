#pragma once

#include "zeolite/NxWebViewJSApiHandler.h"

#include <QPointer>

/** The script handler "docs.print": printing through the suite. */
class NPrintFileHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    NPrintFileHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host);

    void setHost(QObject* host) { m_host = host; }

public Q_SLOTS:
    void getPrintFileTempPath(NxWebViewJSContext& context);
    void selectPrintFileSavePath(NxWebViewJSContext& context);
    void isSupportVltDocsPrint(NxWebViewJSContext& context);
    void printFileByZeo(NxWebViewJSContext& context);

private:
    QPointer<QObject> m_host;
};
