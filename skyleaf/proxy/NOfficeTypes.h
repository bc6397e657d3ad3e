#pragma once

#include <QString>
#include <QStringList>

/** The kinds of documents: their short codes and the packages that show them. */
namespace nofficetypes {

/** The codes, in the order in which the configuration is read. */
QStringList codes();
/** The package name of a code ("w" is "word"); empty for an unknown or empty one. */
QString packageName(const QString& officeType);
/** The name of the plug-in that holds the package ("w" is "quillword"); empty for an unknown or empty one. */
QString pluginName(const QString& officeType);
/** The code of a file type ("word", "onlinevlt", "docx"); empty when it is none of a document. */
QString codeOfFileType(const QString& fileType);
bool isPreopenSupported(const QString& officeType);
bool isSsrSupported(const QString& officeType);

} // namespace nofficetypes
