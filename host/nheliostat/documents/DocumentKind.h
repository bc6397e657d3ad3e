#pragma once

#include <QString>

/** How a file on this machine is shown. */
enum class DocumentKind {
    Missing, //!< no regular file, or it cannot be read
    Text,
    RichText, //!< HTML
    Image,
    Other, //!< by name and size only
};

/** Looks at the file's name and its first bytes; never waits for pipes and devices. */
DocumentKind documentKindOf(const QString& path);

/** The beginning of a text file. */
struct TextStart
{
    QString text;
    bool isCut = false; //!< the file is longer
};

/** At most `longest` bytes of it, decoded; JSON that is whole comes indented. */
TextStart readTextStart(const QString& path, qint64 longest);
