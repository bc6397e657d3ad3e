#include "nheliostat/framework/CloudToLocalSteps.h"

#include "zeolite/NCoreApplication.h"
#include "zeolite/NDcInfoC.h"

void CloudToLocalSteps::recordStep(const QString& fileId, const QString& step, quint64 epochMs)
{
    constexpr int mostSteps = 1000;
    m_steps.append({fileId, step, epochMs});
    while (m_steps.size() > mostSteps)
        m_steps.removeFirst();
    NCoreApplication* services = NCoreApplication::instance();
    NDcInfoC* collection = services ? services->getDcInfo() : nullptr;
    if (!collection)
        return;
    const NDcFields fields{
        {QStringLiteral("fileid"), fileId},
        {QStringLiteral("step"), step},
        {QStringLiteral("time"), QString::number(epochMs)},
    };
    collection->postGeneralEvent(QStringLiteral("cloud_to_local_step"), fields, 0, 0, 1, false);
}
