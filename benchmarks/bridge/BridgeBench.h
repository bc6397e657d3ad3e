#pragma once

#include "BarePage.h"

#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/WebEngineBrowserWidget.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTimer>
#include <QVector>
#include <QWidget>

/**
 * Measures both pages in turns, run after run, and reports medians.
 *
 * Members of the report: per measurement "bareMs", "helioMs" (median over the runs of the milliseconds per
 * call) and "ratio"; "inFlight" with the calls settled, the milliseconds and the longest hold of the
 * user-interface thread.
 */
class BridgeBench final : public QObject
{
    Q_OBJECT
public:
    BridgeBench(nheliostat::browser::BrowserEnvironment& environment, int runs);

    void start();

Q_SIGNALS:
    void finished(const QJsonObject& report);
    void failed(const QString& reason);

private:
    struct Step
    {
        QString name;
        bool isHelio;
        QString code; //!< returns milliseconds, or an object with "ms"
    };

    void makeScriptObject(NxWebViewContainer* container, QObject** object);
    void beginWhenLoaded();
    void runNext();
    void take(const Step& step, const BrowserControl::Evaluation& outcome);
    void beat();
    QJsonObject report() const;

    QWidget m_window;
    nheliostat::browser::WebEngineBrowserWidget* m_browser;
    BarePage* m_bare;
    QVector<Step> m_steps;
    int m_next = 0;
    int m_loads = 0;
    QMap<QString, QVector<double>> m_samples; //!< by "name bare" and "name helio", and by name for holds
    QTimer m_heart;
    QElapsedTimer m_sinceBeat;
    double m_longestHoldMs = 0;
};
