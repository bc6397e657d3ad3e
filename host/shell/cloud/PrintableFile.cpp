#include "shell/cloud/PrintableFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPainter>
#include <QPdfDocument>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTextDocument>
#include <QUrl>

#include <cstdio>

namespace shell::printing {

namespace {

constexpr qint64 largestText = qint64(16) * 1024 * 1024;
constexpr qint64 sniffedBytes = 4096;
/** Pixels across a printed page; more is not seen on paper, and a page takes some dozen MB. */
constexpr int longestPageSide = 3600;

QString tr(const char* text)
{
    return QCoreApplication::translate("Printing", text);
}

/** Takes pictures of a document from its own directory, and nothing from elsewhere. */
class LocalDocument final : public QTextDocument
{
public:
    explicit LocalDocument(const QString& path)
        : m_directory(QFileInfo(path).canonicalPath())
    {
        setBaseUrl(QUrl::fromLocalFile(path));
    }

protected:
    QVariant loadResource(int type, const QUrl& name) override
    {
        const QUrl url = baseUrl().resolved(name);
        const QString file = QFileInfo(url.toLocalFile()).canonicalFilePath();
        return file.startsWith(m_directory + u'/') ? QTextDocument::loadResource(type, url) : QVariant();
    }

private:
    const QString m_directory;
};

QString readText(QFile& file, bool isHtml)
{
    const QByteArray bytes = file.readAll();
    QTextCodec* utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec* codec =
        isHtml ? QTextCodec::codecForHtml(bytes, utf8) : QTextCodec::codecForUtfText(bytes, utf8);
    return codec->toUnicode(bytes);
}

QString printDocument(QPrinter& printer, const PrintableFile& printable)
{
    QFile file(printable.path);
    if (!file.open(QIODevice::ReadOnly))
        return tr("The file cannot be read: %1").arg(file.errorString());
    const bool isHtml = printable.kind == FileKind::Html;
    const QString text = readText(file, isHtml);
    LocalDocument document(printable.path);
    if (isHtml)
        document.setHtml(text);
    else
        document.setPlainText(text);
    document.print(&printer);
    return {};
}

/** Draws the picture as large as the page lets it be, in the middle. */
void drawOnPage(QPainter& painter, const QPrinter& printer, const QImage& image)
{
    const QRect page(QPoint(0, 0), printer.pageLayout().paintRectPixels(printer.resolution()).size());
    QRect target(QPoint(0, 0), image.size().scaled(page.size(), Qt::KeepAspectRatio));
    target.moveCenter(page.center());
    painter.drawImage(target, image);
}

QString printImage(QPrinter& printer, const PrintableFile& file)
{
    QImageReader reader(file.path);
    reader.setAutoTransform(true);
    if (reader.size().width() > longestPageSide || reader.size().height() > longestPageSide)
        reader.setScaledSize(reader.size().scaled(longestPageSide, longestPageSide, Qt::KeepAspectRatio));
    const QImage image = reader.read();
    if (image.isNull())
        return tr("The picture cannot be read: %1").arg(reader.errorString());
    QPainter painter;
    if (!painter.begin(&printer))
        return tr("The printer does not begin.");
    drawOnPage(painter, printer, image);
    return {};
}

QString printPdf(QPrinter& printer, const PrintableFile& file)
{
    QPdfDocument document;
    if (document.load(file.path) != QPdfDocument::NoError || document.pageCount() == 0)
        return tr("The PDF file cannot be read.");
    QPainter painter;
    if (!painter.begin(&printer))
        return tr("The printer does not begin.");
    for (int page = 0; page < document.pageCount(); ++page) {
        const QSize size =
            document.pageSize(page).scaled(longestPageSide, longestPageSide, Qt::KeepAspectRatio).toSize();
        const QImage image = document.render(page, size);
        if (image.isNull())
            return tr("Page %1 of the PDF file cannot be read.").arg(page + 1);
        if (page > 0 && !printer.newPage())
            return tr("The printer ended after page %1.").arg(page);
        drawOnPage(painter, printer, image);
    }
    return {};
}

/** Whether bytes that a name calls text are none; UTF-16 begins with its mark. */
bool looksBinary(const QByteArray& start)
{
    return start.contains('\0') && !start.startsWith("\xff\xfe") && !start.startsWith("\xfe\xff");
}

Result<FileKind> kindOf(const QString& path, const QByteArray& start)
{
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    if (type.inherits(QStringLiteral("application/pdf")))
        return FileKind::Pdf;
    if (QImageReader(path).canRead())
        return FileKind::Image;
    if (!looksBinary(start) && type.inherits(QStringLiteral("text/html")))
        return FileKind::Html;
    if (!looksBinary(start) && type.inherits(QStringLiteral("text/plain")))
        return FileKind::Text;
    return Error{tr("Files of this kind (%1) cannot be printed.").arg(type.comment())};
}

} // namespace

Result<PrintableFile> findPrintable(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return Error{tr("The file does not exist.")};
    if (!info.isFile())
        return Error{tr("This is not a file.")};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error{tr("The file cannot be read: %1").arg(file.errorString())};
    const Result<FileKind> kind = kindOf(path, file.read(sniffedBytes));
    if (!kind)
        return kind.error();
    if ((*kind == FileKind::Text || *kind == FileKind::Html) && info.size() > largestText)
        return Error{tr("The text is too large to be printed.")};
    return PrintableFile{path, *kind};
}

QString printOn(QPrinter& printer, const PrintableFile& file)
{
    switch (file.kind) {
    case FileKind::Image:
        return printImage(printer, file);
    case FileKind::Pdf:
        return printPdf(printer, file);
    default:
        return printDocument(printer, file);
    }
}

QString printToPdf(const PrintableFile& file, const QString& target)
{
    const QString directory = QFileInfo(target).absolutePath();
    QString failed = tr("The PDF file cannot be written: %1").arg(target);
    if (QFileInfo(target).isDir())
        return failed;
    // In a directory of its own until it is complete.
    const QTemporaryDir work(directory + QStringLiteral("/.print-XXXXXX"));
    if (!work.isValid())
        return failed;
    const QString partial = work.filePath(QStringLiteral("print.pdf"));
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(partial);
        QString error = printOn(printer, file);
        if (!error.isEmpty())
            return error;
    }
    if (QFileInfo(partial).size() == 0)
        return failed;
    const bool isMoved =
        std::rename(QFile::encodeName(partial).constData(), QFile::encodeName(target).constData()) == 0;
    return isMoved ? QString() : failed;
}

QString freePdfPath(const QString& path)
{
    QString candidate = path + QStringLiteral(".pdf");
    for (int i = 1; QFileInfo::exists(candidate); ++i)
        candidate = QStringLiteral("%1 (%2).pdf").arg(path).arg(i);
    return candidate;
}

} // namespace shell::printing
