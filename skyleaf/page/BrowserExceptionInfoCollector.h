#pragma once

#include <QObject>

/** Reports how many documents were open when a browser ended abnormally. One per process. */
class BrowserExceptionInfoCollector : public QObject
{
    Q_OBJECT
public:
    /** Creates the collector as a child of the application and lets it watch the application's script events.
     */
    static void installOnce();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};
