#pragma once

#include "shell/config/Result.h"

#include <QString>

class QPrinter;

namespace shell::printing {

enum class FileKind { Text, Html, Image, Pdf };

/** A file that was found to be printable. */
struct PrintableFile
{
    QString path;
    FileKind kind = FileKind::Text;
};

/** Looks at the file; the error says why it cannot be printed. */
Result<PrintableFile> findPrintable(const QString& path);

/**
 * Prints the file on a printer that was set up; empty, or what went wrong. Takes as long as the file is
 * large. Any thread, one printer on one thread at a time.
 */
QString printOn(QPrinter& printer, const PrintableFile& file);

/** Prints into a PDF file, which is there complete or not at all. Empty, or what went wrong. Any thread. */
QString printToPdf(const PrintableFile& file, const QString& target);

/** The path of a PDF file beside the file that does not exist yet: "a.txt.pdf", "a.txt (1).pdf", … */
QString freePdfPath(const QString& path);

} // namespace shell::printing
