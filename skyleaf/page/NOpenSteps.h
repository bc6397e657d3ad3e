#pragma once

#include <QElapsedTimer>
#include <QPair>
#include <QString>
#include <QVector>

/** The named steps of an open, in order, each with its milliseconds. */
class NOpenSteps
{
public:
    using Step = QPair<QString, qint64>;

    /** A step that happens now: the time since the page was constructed. */
    void record(const QString& name, const QElapsedTimer& sinceConstruction)
    {
        append(name, sinceConstruction.isValid() ? sinceConstruction.elapsed() : 0);
    }
    void append(const QString& name, qint64 milliseconds) { m_steps.append({name, milliseconds}); }
    const QVector<Step>& all() const { return m_steps; }

private:
    QVector<Step> m_steps;
};

/** A step that takes as long as its scope; recorded when the scope ends. */
class NTimedStep
{
public:
    NTimedStep(NOpenSteps& steps, QString name)
        : m_steps(steps)
        , m_name(std::move(name))
    {
        m_timer.start();
    }
    ~NTimedStep() { m_steps.append(m_name, m_timer.elapsed()); }
    NTimedStep(const NTimedStep&) = delete;
    NTimedStep& operator=(const NTimedStep&) = delete;

private:
    NOpenSteps& m_steps;
    QString m_name;
    QElapsedTimer m_timer;
};
