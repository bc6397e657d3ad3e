#pragma once

#include "page/NOpenSteps.h"

#include <QElapsedTimer>
#include <QString>
#include <QVector>

class NDocumentLoad;

/** What a page tells data collection about its opens. */
class NOpenTelemetry
{
public:
    /** The page is there; times count from now. */
    void start() { m_sinceConstruction.start(); }
    /** Milliseconds since the epoch. */
    qint64 loadStartMs() const { return m_loadStartMs; }
    void setLoadStart(qint64 nowMs) { m_loadStartMs = nowMs; }

    void record(const QString& step) { m_steps.record(step, m_sinceConstruction); }
    NTimedStep timedStep(const QString& step) { return {m_steps, step}; }

    /** When the shell began the open, if it knows; times of the monotonic clock. */
    void noteOpenStart(qint64 startNs);
    void noteBrowserCreated();

    /** Where the page is in its life. */
    struct PageStage
    {
        QString preInitEntry;
        bool preInited = false;
        bool loaded = false;
        bool loadCalled = false;
    };
    void postPrecreate(bool init, const PageStage& stage, const NDocumentLoad& load) const;
    void postStep(const QString& step, const PageStage& stage, const NDocumentLoad& load,
                  const QString& browserUrl, int errorCode = 0, const QString& errorMessage = {}) const;
    void postOpenTime(const NDocumentLoad& load) const;
    void postMemoryRelease(const QString& action, const NDocumentLoad& load) const;
    /** Once for each open whose start is known. */
    void postPerformance(const QString& browserUrl);

private:
    NOpenSteps m_steps;
    QElapsedTimer m_sinceConstruction;
    QVector<qint64> m_timePoints; //!< start of the open, start of the page's own work, browser created
    qint64 m_loadStartMs = 0;
};
