#include "nheliostat/documents/DownloadState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

DownloadState::Stage stageOf(const QString& word)
{
    if (word == QLatin1String("finished"))
        return DownloadState::Stage::Finished;
    if (word == QLatin1String("failed") || word == QLatin1String("stopped"))
        return DownloadState::Stage::Failed;
    return DownloadState::Stage::Running;
}

} // namespace

DownloadState DownloadState::fromReport(const QString& report)
{
    const int separator = report.indexOf(u'|');
    const QJsonDocument payload = QJsonDocument::fromJson(report.mid(separator + 1).toUtf8());
    const QJsonArray tasks = payload.object().value(QLatin1String("tasks")).toArray();
    if (separator < 0 || tasks.isEmpty())
        return {Stage::Failed, 0, {}, {}};
    const QJsonObject task = tasks.first().toObject();
    const QString path = task.value(QLatin1String("path")).toString();
    DownloadState state{stageOf(task.value(QLatin1String("state")).toString()),
                        std::clamp(task.value(QLatin1String("percent")).toInt(), 0, 100), path,
                        task.value(QLatin1String("msg")).toString()};
    if (state.stage == Stage::Finished && path.isEmpty())
        state.stage = Stage::Failed;
    return state;
}
