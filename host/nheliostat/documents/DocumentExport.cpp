#include "nheliostat/documents/DocumentExport.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

QString DocumentExport::url(const QString& apiUrl, const QString& documentId)
{
    return apiUrl + QStringLiteral("/office-config/%1?part=file_info,ssr")
                        .arg(QString::fromLatin1(QUrl::toPercentEncoding(documentId)));
}

std::optional<DocumentExport> DocumentExport::fromReply(const QByteArray& body)
{
    const QJsonObject reply = QJsonDocument::fromJson(body).object();
    const QString content =
        reply.value(QLatin1String("ssr")).toObject().value(QLatin1String("html")).toString();
    if (content.isEmpty())
        return std::nullopt;
    const QString name =
        reply.value(QLatin1String("file_info")).toObject().value(QLatin1String("name")).toString();
    const QString html = QStringLiteral("<!DOCTYPE html>\n<meta charset=\"utf-8\">\n<title>%1</title>\n%2\n")
                             .arg(name.toHtmlEscaped(), content);
    return DocumentExport{plainFileName(name, QStringLiteral("document")), html.toUtf8()};
}

QString plainFileName(const QString& name, const QString& otherwise)
{
    constexpr int longestName = 80; // characters; leaves room for a suffix in any encoding
    QString plain = QFileInfo(name).fileName().left(longestName);
    for (QChar& c : plain) {
        if (c == u'/' || c == u'\\' || c.category() == QChar::Other_Control)
            c = u'_';
    }
    plain = plain.trimmed();
    const bool isDots = plain == QLatin1String(".") || plain == QLatin1String("..");
    return plain.isEmpty() || isDots ? otherwise : plain;
}
