#include "page/OpenFilesParams.h"

#include "page/DocsUrl.h"

#include <QRegularExpression>

#include <optional>

namespace {

/** The text after the prefix, when `part` starts with it. */
std::optional<QString> after(const QString& part, const QString& prefix,
                             Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive)
{
    if (!part.startsWith(prefix, sensitivity))
        return std::nullopt;
    return part.mid(prefix.size());
}

QString fromBase64(const QString& text)
{
    return QString::fromUtf8(QByteArray::fromBase64(text.toUtf8()));
}

/** What the parameter parts say, before it is applied to the URL. */
class ParameterReader
{
public:
    void read(const QString& part)
    {
        readNamed(part);
        if (const auto value = after(part, QStringLiteral("version="))) {
            bool ok = false;
            const uint number = value->toUInt(&ok);
            version = ok ? std::optional<uint>(number) : std::nullopt;
        }
        if (const auto value = after(part, QStringLiteral("downprohibited="), Qt::CaseSensitive))
            downloadProhibited = downloadProhibited || value->toInt() > 0;
        if (const auto value = after(part, QStringLiteral("toolbar=")))
            hideToolBar = hideToolBar || value->toInt() <= 0;
        if (const auto value = after(part, QStringLiteral("cmd=")); value && command.isEmpty())
            command = *value;
    }

    QString base64Url;
    QString suffix;
    QString fileId;
    QString newPage;
    QString fileName;
    QString command;
    std::optional<uint> version;
    bool downloadProhibited = false;
    bool hideToolBar = false;

private:
    /** One chain: the first name that takes the part ends it; a name takes a part only while its value is
     * empty. */
    void readNamed(const QString& part)
    {
        if (take(part, QStringLiteral("base64url="), base64Url) ||
            take(part, QStringLiteral("suffix="), suffix) || take(part, QStringLiteral("fileid="), fileId) ||
            take(part, QStringLiteral("newpage="), newPage)) {
            return;
        }
        if (take(part, QStringLiteral("filename="), fileName)) {
            fileName.replace(QLatin1Char('\n'), QLatin1Char('&'));
            return;
        }
        if (take(part, QStringLiteral("base64filename="), fileName))
            fileName = fromBase64(fileName);
    }

    static bool take(const QString& part, const QString& prefix, QString& value)
    {
        const auto text = value.isEmpty() ? after(part, prefix) : std::nullopt;
        if (!text)
            return false;
        value = *text;
        return true;
    }
};

} // namespace

QString findUrlArgument(const QStringList& args)
{
    for (const QString& argument : args) {
        const QStringList parts = argument.split(QStringLiteral("&&"));
        for (const QString& part : parts) {
            if (const auto url = after(part, QStringLiteral("url=")))
                return *url;
        }
    }
    return {};
}

OpenFilesParams parseOpenFilesParams(const QString& foundUrl)
{
    OpenFilesParams params;
    params.foundUrl = foundUrl;
    const QStringList parts = foundUrl.split(QLatin1Char('&'));
    params.url = parts.first();

    ParameterReader reader;
    for (int i = 1; i < parts.size(); ++i)
        reader.read(parts.at(i));

    params.suffix = reader.suffix;
    params.fileId = reader.fileId.isEmpty() ? positiveLastSegment(params.url) : reader.fileId;
    params.fileName = reader.fileName;
    params.newPage = reader.newPage.toInt() > 0;
    params.downloadProhibited = reader.downloadProhibited;
    params.showToolBar = !reader.hideToolBar;

    if (!reader.base64Url.isEmpty()) {
        const QString full = fromBase64(reader.base64Url);
        params.url = full.startsWith(params.url, Qt::CaseInsensitive) ? full : QString();
    }
    if (!reader.command.isEmpty())
        params.url += QStringLiteral("&cmd=") + reader.command;
    params.from = docsurl::enterSourceOf(params.url);
    if (!params.url.isEmpty() && reader.version)
        params.url += QStringLiteral("?version=") + QString::number(*reader.version);
    return params;
}

QString positiveLastSegment(const QString& text)
{
    int separator = text.lastIndexOf(QLatin1Char('/'));
    if (separator < 0)
        separator = text.lastIndexOf(QLatin1Char('\\'));
    if (separator <= 0)
        return {};
    const QString segment = text.mid(separator + 1);
    bool ok = false;
    return segment.toLongLong(&ok) > 0 && ok ? segment : QString();
}

EntryMarker findEntryMarker(const QString& url)
{
    static const QRegularExpression pattern(QStringLiteral("\\$entry(.+)\\$"));
    const QRegularExpressionMatch match = pattern.match(url);
    if (!match.hasMatch())
        return {};
    const QString opening = QStringLiteral("$entry(");
    const int position = match.capturedStart();
    const int end = url.indexOf(QLatin1Char('$'), position + 1);
    const int keyLength = end - 1 - (position + opening.size());
    if (end < 0 || keyLength < 0 || !url.midRef(position).startsWith(opening))
        return {};
    return {position, end + 1 - position, url.mid(position + opening.size(), keyLength)};
}
