#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/** The positional command that asks a preview page to show a cloud document. */
struct PreviewCommand
{
    QString url;    //!< empty when the command carries none that can be decoded
    QString suffix; //!< of the file
    QString fileId; //!< a positive number; empty when the command and its URL name none
    QString from;   //!< where the document was opened from
    bool newPage = false;
    bool createSubPage = true;
    QStringList pathParts; //!< the local path, then what may belong to it; empty when none was given

    /** Whether the command names a document that can be opened. */
    bool canBeOpened() const;
};

namespace previewcommand {

/** Whether a notify text is such a command. */
bool isPreviewCommand(const QString& text);
/** Reads a command of at least two parts; what is missing or broken stays empty. */
PreviewCommand parse(const QStringList& parts);

/**
 * The local path, continued part by part while `fileExists` denies it; empty when no part makes it exist.
 */
QString recoverPath(const QStringList& pathParts, const std::function<bool(const QString&)>& fileExists);

} // namespace previewcommand
