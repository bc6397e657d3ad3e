#pragma once

#include <QList>
#include <QObject>

/** Keeps the steps of documents that go from the cloud to this machine, and posts each as an event. */
class CloudToLocalSteps final : public QObject
{
    Q_OBJECT
public:
    struct Step
    {
        QString fileId;
        QString name;
        quint64 epochMs;
    };

    using QObject::QObject;

    /** Posts "cloud_to_local_step" {"fileid", "step", "time"}; keeps the last thousand. */
    Q_INVOKABLE void recordStep(const QString& fileId, const QString& step, quint64 epochMs);
    const QList<Step>& steps() const { return m_steps; }

private:
    QList<Step> m_steps;
};
