#include "bridge/clipboard/CustomMimeFormat.h"
#include "bridge/clipboard/HtmlFormat.h"
#include "bridge/clipboard/SystemClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTextCodec>

// Qt's clipboard, where formats are plain names (X11). Two things differ from a system that has "HTML
// Format":
// - Every program here, the browser included, takes "text/html" for HTML and would show a CF_HTML header as
// text. So
//   CF_HTML is placed as "HTML Format", and "text/html" gets the document behind the header.
// - The browser's custom data has another name.

namespace {

const QString htmlType = QStringLiteral("text/html");
const QString browserCustomType = QStringLiteral("chromium/x-web-custom-data");

QString sharedCustomName()
{
    return QLatin1String(custommime::formatName);
}

/** Some programs write "text/html" in UTF-16 behind a byte order mark; readers here expect UTF-8. */
QByteArray htmlAsUtf8(const QByteArray& html)
{
    if (!html.startsWith("\xff\xfe") && !html.startsWith("\xfe\xff"))
        return html;
    const QTextCodec* const codec = QTextCodec::codecForName("UTF-16");
    return codec ? codec->toUnicode(html).toUtf8() : html;
}

void translateHtml(QMimeData& content)
{
    const QStringList formats = content.formats();
    for (const QString& format : formats) {
        if (!format.contains(htmlType))
            continue;
        const QByteArray wrapped = content.data(format);
        const std::optional<QByteArray> html = htmlformat::document(wrapped);
        if (!html)
            continue;
        // The encoding is named, as browsers do: some programs guess another one.
        content.setData(format,
                        "<meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">" + *html);
        content.setData(QLatin1String(htmlformat::formatName), wrapped);
    }
}

} // namespace

namespace systemclipboard {

void registerFormat(const QString&)
{
    // The name is the format.
}

std::optional<QByteArray> read(const QString& name)
{
    const QMimeData* const data = content();
    if (!data)
        return {};
    QByteArray found = data->data(name);
    if (found.isEmpty() && name == QLatin1String(htmlformat::formatName))
        found = htmlAsUtf8(data->data(htmlType));
    return found.isEmpty() ? std::nullopt : std::optional(found);
}

const QMimeData* content()
{
    return QGuiApplication::clipboard()->mimeData();
}

QStringList formats(const QMimeData& content)
{
    QStringList names = content.formats();
    if (!names.contains(sharedCustomName()))
        names.replaceInStrings(browserCustomType, sharedCustomName());
    return names;
}

QByteArray bytes(const QMimeData& content, const QString& format)
{
    const bool isTranslated = format == sharedCustomName() && !content.hasFormat(format);
    return content.data(isTranslated ? browserCustomType : format);
}

void replace(std::unique_ptr<QMimeData> content)
{
    translateHtml(*content);
    if (content->hasFormat(sharedCustomName()))
        content->setData(browserCustomType, content->data(sharedCustomName()));
    QGuiApplication::clipboard()->setMimeData(content.release());
}

} // namespace systemclipboard
