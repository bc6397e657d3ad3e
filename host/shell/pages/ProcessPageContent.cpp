#include "shell/pages/ProcessPageContent.h"

namespace shell {

std::optional<ProcessPageContent> ProcessPageContent::fromFileArguments(const QStringList& args)
{
    const QString fileId = args.value(0).trimmed();
    if (fileId.isEmpty())
        return std::nullopt;
    return ProcessPageContent{fileId, args.value(1).trimmed(), {}};
}

std::optional<ProcessPageContent> ProcessPageContent::fromText(const QString& text)
{
    const QStringList parts = text.split(u'&');
    if (parts.size() != 3 || !parts.at(0).isEmpty() || parts.at(2).isEmpty())
        return std::nullopt;
    return ProcessPageContent{{}, parts.at(1), parts.at(2)};
}

} // namespace shell
