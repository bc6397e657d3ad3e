#include "nheliostat/documents/LocalDocumentRequest.h"

#include <QFileInfo>
#include <QRegularExpression>

LocalDocumentRequest LocalDocumentRequest::fromParameters(const QVariantMap& parameters)
{
    const auto textOf = [&parameters](const char* key) {
        return parameters.value(QLatin1String(key)).toString().trimmed();
    };
    return {textOf("fileid"), textOf("historyid"), QFileInfo(textOf("fileName")).fileName(),
            parameters.value(QStringLiteral("isSaveAs")).toBool()};
}

bool LocalDocumentRequest::namesFile() const
{
    static const QRegularExpression id(QStringLiteral("\\A[A-Za-z0-9_-]{1,64}\\z"));
    return fileId != QLatin1String("-1") && id.match(fileId).hasMatch();
}

bool LocalDocumentRequest::isNamedBy(const QMap<QString, QString>& parameters) const
{
    return namesFile() && parameters.value(QStringLiteral("fileId")) == fileId &&
           parameters.value(QStringLiteral("historyid")) == historyId;
}
