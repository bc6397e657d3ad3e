#include "nvltcloudmodule/SendFileRequest.h"

#include <QRegularExpression>
#include <QUrl>

namespace vltcloud {

namespace {

QString firstText(const QVariantMap& arguments, std::initializer_list<const char*> keys)
{
    for (const char* key : keys) {
        QString text = arguments.value(QLatin1String(key)).toString().trimmed();
        if (!text.isEmpty())
            return text;
    }
    return {};
}

} // namespace

Result<SendFileRequest> readSendFileRequest(const QVariantMap& arguments, const QString& site)
{
    const QString type = arguments.value(QStringLiteral("widgetType")).toString();
    if (type != QLatin1String("sendFileWindow"))
        return QStringLiteral("there is no window \"%1\"").arg(type);
    SendFileRequest request;
    request.fileId = firstText(arguments, {"fileId", "fileid"});
    if (request.fileId.isEmpty())
        return QStringLiteral("no file to send: \"fileId\" is missing");
    request.fileName = firstText(arguments, {"fileName", "filename", "name"});
    if (request.fileName.isEmpty())
        request.fileName = request.fileId;
    request.link = firstText(arguments, {"link", "url"});
    if (request.link.isEmpty() && !site.isEmpty())
        request.link =
            site + QStringLiteral("/p/") + QString::fromLatin1(QUrl::toPercentEncoding(request.fileId));
    return request;
}

QStringList readRecipients(const QString& text)
{
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    QStringList names = text.split(separators, Qt::SkipEmptyParts);
    names.removeDuplicates();
    return names;
}

} // namespace vltcloud
