#include "bridge/clipboard/ClipboardContents.h"

#include "bridge/clipboard/CefClipboardEventMimeCustomBuilder.h"
#include "bridge/clipboard/CefClipboardEventMimeCustomParser.h"
#include "bridge/clipboard/CefClipboardEventMimeHtmlBuilder.h"
#include "bridge/clipboard/CefClipboardEventMimeHtmlParser.h"
#include "bridge/clipboard/CustomMimeFormat.h"
#include "bridge/clipboard/SystemClipboard.h"

#include <QJsonDocument>
#include <QMimeData>
#include <QUrl>

namespace {

constexpr auto uriListType = "text/uri-list";
const QString cloudFileFormat = QStringLiteral("cloudFile");

/** More than this of one format is left out of the reply. */
constexpr int largestFormat = 64 << 20;

Json::Value jsonText(const QByteArray& bytes)
{
    return {bytes.constData(), bytes.constData() + bytes.size()};
}

Json::Value base64(const QByteArray& bytes)
{
    return jsonText(bytes.toBase64());
}

bool contains(const QString& type, const char* part)
{
    return type.contains(QLatin1String(part));
}

bool containsInAnyCase(const QString& type, const char* part)
{
    return type.contains(QLatin1String(part), Qt::CaseInsensitive);
}

/** The suite's own document data, as it is put into the custom format. */
bool isPlacedAsCustom(const QString& type)
{
    return containsInAnyCase(type, "/zqdoc") || containsInAnyCase(type, "text/webtextId");
}

bool isOwnDocumentType(const QString& type)
{
    return isPlacedAsCustom(type) || containsInAnyCase(type, "text/zqdocclipboardinfo");
}

void addOwnDocumentTypes(Json::Value& reply, const QByteArray& custom)
{
    const auto [values, ok] = CefClipboardEventMimeCustomParser(custom).parse();
    for (auto value = values.begin(); ok && value != values.end(); ++value) {
        const QByteArray text = value->toString().toUtf8();
        if (isOwnDocumentType(value.key()) && !reply.isMember(value.key().toStdString()) && !text.isEmpty())
            reply[value.key().toLower().toStdString()] = base64(text);
    }
}

void addFormat(Json::Value& reply, const QMimeData& content, const QString& format)
{
    if (contains(format, "text/html")) {
        const auto [html, ok] = CefClipboardEventMimeHtmlParser().parse();
        if (ok)
            reply[format.toStdString()] = base64(html);
    } else if (containsInAnyCase(format, "text/plain") || containsInAnyCase(format, "image/bmp")) {
        const QByteArray bytes = systemclipboard::bytes(content, format);
        if (!bytes.isEmpty() && bytes.size() <= largestFormat)
            reply[format.toStdString()] = base64(bytes);
    } else if (contains(format, custommime::formatName)) {
        addOwnDocumentTypes(reply, systemclipboard::bytes(content, format));
    }
}

QList<QUrl> urlsOf(const QVariant& value)
{
    QList<QUrl> urls;
    const QStringList texts = value.toStringList();
    for (const QString& text : texts)
        urls.append(QUrl(text));
    return urls;
}

} // namespace

namespace clipboardcontents {

Json::Value toReply(const QMimeData* content)
{
    Json::Value reply(Json::objectValue);
    if (!content)
        return reply;
    if (content->hasUrls()) {
        Json::Value& urls = reply[uriListType] = Json::arrayValue;
        const QList<QUrl> list = content->urls();
        for (const QUrl& url : list)
            urls.append(base64(url.toString().toUtf8()));
    }
    const QStringList formats = systemclipboard::formats(*content);
    for (const QString& format : formats) {
        if (!reply.isMember(format.toStdString()))
            addFormat(reply, *content, format);
    }
    return reply;
}

void addPicture(Json::Value& reply, const QByteArray& png)
{
    if (!png.isEmpty())
        reply["image/png"] = base64(png);
}

Placed fromArguments(const QVariantMap& arguments)
{
    Placed placed;
    placed.content = std::make_unique<QMimeData>();
    QMimeData* const content = placed.content.get();
    CefClipboardEventMimeCustomBuilder custom;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const QString& type = argument.key();
        const QString lower = type.toLower();
        if (containsInAnyCase(type, uriListType)) {
            content->setUrls(urlsOf(argument.value()));
        } else if (isPlacedAsCustom(type)) {
            custom.insert(lower, argument.value());
        } else if (contains(type, "text/html")) {
            content->setData(lower,
                             CefClipboardEventMimeHtmlBuilder().build(argument.value().toString().toUtf8()));
        } else if (contains(type, "image/base64")) {
            placed.pictures.append(QByteArray::fromBase64(argument.value().toString().toLatin1()));
        } else {
            content->setData(lower, argument.value().toString().toUtf8());
        }
    }
    if (!custom.isEmpty()) {
        const QByteArray bytes = custom.build();
        if (!bytes.isEmpty())
            content->setData(QLatin1String(custommime::formatName), bytes);
    }
    return placed;
}

Json::Value toSimpleReply(const QMimeData* content)
{
    Json::Value reply(Json::objectValue);
    if (content && content->hasFormat(cloudFileFormat)) {
        reply["type"] = "cloudFile";
        const QJsonDocument document = QJsonDocument::fromJson(content->data(cloudFileFormat));
        if (document.isObject()) {
            for (const char* name : {"url", "fileids"}) {
                const QVariant value = document.object().value(QLatin1String(name)).toVariant();
                reply["content"][name] = jsonText(value.toString().toUtf8());
            }
        }
    } else if (content && content->hasText()) {
        reply["type"] = "text";
        reply["content"] = jsonText(content->text().toUtf8());
    } else {
        reply["type"] = "binary";
    }
    return reply;
}

std::unique_ptr<QMimeData> fromSimpleData(const QVariantMap& data)
{
    const QString type = data.value(QStringLiteral("type")).toString();
    const QString text = data.value(QStringLiteral("content")).toString();
    auto content = std::make_unique<QMimeData>();
    if (type == QLatin1String("text"))
        content->setText(text);
    else if (type == cloudFileFormat)
        content->setData(cloudFileFormat,
                         QJsonDocument::fromJson(text.toUtf8()).toJson(QJsonDocument::Compact));
    else
        return nullptr;
    return content;
}

} // namespace clipboardcontents
