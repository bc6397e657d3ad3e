#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace shell {

/** What a process page was told to show: a file of the cloud, or a new one in a folder. */
struct ProcessPageContent
{
    QString fileId; //!< empty for a new file
    QString groupId;
    QString parentId; //!< the folder of a new file, "0" for the group's root

    bool isNew() const { return fileId.isEmpty(); }

    /** From [file id, group id]; nothing without a file id. */
    static std::optional<ProcessPageContent> fromFileArguments(const QStringList& args);
    /** From "&group id&folder id"; nothing for any other text. */
    static std::optional<ProcessPageContent> fromText(const QString& text);
};

} // namespace shell
