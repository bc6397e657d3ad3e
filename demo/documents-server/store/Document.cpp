#include "store/Document.h"

#include <algorithm>
#include <cmath>

#include <QJsonDocument>

#include "store/OfficeTypes.h"

namespace documents {
namespace {

Error damaged(const QString& why)
{
    return {ErrorCode::Damaged, QStringLiteral("The document's file is damaged: %1.").arg(why)};
}

} // namespace

bool Document::operator==(const Document& other) const
{
    return id == other.id && name == other.name && officeType == other.officeType &&
           version == other.version && modified == other.modified && content == other.content;
}

bool isDocumentId(const QString& text)
{
    constexpr int longest = 18;
    return !text.isEmpty() && text.size() <= longest &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

QString suffixOf(const QString& name)
{
    const auto dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString();
}

std::optional<qint64> wholeNumber(const QJsonValue& value)
{
    constexpr double largestExact = 9007199254740992.0;
    const double number = value.toDouble(std::nan(""));
    if (!(std::abs(number) <= largestExact) || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<qint64>(number);
}

QByteArray toFileText(const Document& document)
{
    const QJsonObject object{{QStringLiteral("id"), document.id},
                             {QStringLiteral("name"), document.name},
                             {QStringLiteral("officeType"), document.officeType},
                             {QStringLiteral("version"), document.version},
                             {QStringLiteral("modified"), document.modified},
                             {QStringLiteral("content"), document.content}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

Result<Document> documentFromFileText(const QByteArray& text)
{
    QJsonParseError parseError;
    const QJsonObject object = QJsonDocument::fromJson(text, &parseError).object();
    if (parseError.error != QJsonParseError::NoError)
        return damaged(parseError.errorString());

    Document document;
    document.id = object.value(QLatin1String("id")).toString();
    document.name = object.value(QLatin1String("name")).toString();
    document.officeType = object.value(QLatin1String("officeType")).toString();
    const auto version = wholeNumber(object.value(QLatin1String("version")));
    const auto modified = wholeNumber(object.value(QLatin1String("modified")));
    const QJsonValue content = object.value(QLatin1String("content"));

    if (!isDocumentId(document.id))
        return damaged(QStringLiteral("\"id\" is not a number written as text"));
    if (document.name.isEmpty())
        return damaged(QStringLiteral("\"name\" is missing"));
    if (!officeTypeByCode(document.officeType))
        return damaged(QStringLiteral("\"officeType\" is not known"));
    if (!version || *version < 1)
        return damaged(QStringLiteral("\"version\" is not a positive whole number"));
    if (!modified)
        return damaged(QStringLiteral("\"modified\" is not a time"));
    if (!content.isObject())
        return damaged(QStringLiteral("\"content\" is not an object"));

    document.version = *version;
    document.modified = *modified;
    document.content = content.toObject();
    return document;
}

} // namespace documents
