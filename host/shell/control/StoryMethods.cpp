#include "shell/control/StoryMethods.h"

#include "shell/story/StoryFiles.h"
#include "shell/story/StoryRecorder.h"

namespace shell {

namespace {

rpc::Outcome failed(const QString& text)
{
    return rpc::Failure{rpc::OperationFailed, text};
}

} // namespace

rpc::Method storyExportMethod(StoryRecorder* recorder)
{
    using Type = rpc::Parameter::Type;
    return rpc::immediateMethod(
        QStringLiteral("story.export"),
        {{QStringLiteral("page"), Type::Integer},
         {QStringLiteral("file"), Type::Text},
         {QStringLiteral("dark"), Type::Boolean, false}},
        [recorder](const QJsonObject& params) -> rpc::Outcome {
            if (!recorder)
                return failed(QStringLiteral("data collection is off, so nothing tells of opens"));
            const int page = params.value(QLatin1String("page")).toInt();
            const story::OpenStory* found = recorder->latestOf(page);
            if (!found)
                return failed(QStringLiteral("no open is known of page %1").arg(page));
            const QString error = saveStory(*found, params.value(QLatin1String("file")).toString(),
                                            params.value(QLatin1String("dark")).toBool());
            if (!error.isEmpty())
                return failed(error);
            return QJsonValue();
        });
}

} // namespace shell
