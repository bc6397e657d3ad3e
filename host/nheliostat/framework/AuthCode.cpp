#include "tava/AuthCode.h"

#include <QDateTime>
#include <QMessageAuthenticationCode>

namespace vlt::tava {

QMap<QString, QByteArray> rpcGenerateAuthCodeHeaderDataByApp(const QByteArray& kind,
                                                             const QByteArray& application,
                                                             const QByteArray& identity1,
                                                             const QByteArray& identity2, const QString& path)
{
    if (identity1.isEmpty() || identity2.isEmpty())
        return {};
    const QByteArray date = QByteArray::number(QDateTime::currentSecsSinceEpoch());
    const QByteArray message =
        QList<QByteArray>{kind, application, identity1, date, path.toUtf8()}.join('\n');
    return {{QStringLiteral("X-Auth-App"), application},
            {QStringLiteral("X-Auth-Date"), date},
            {QStringLiteral("X-Auth-Code"),
             QMessageAuthenticationCode::hash(message, identity2, QCryptographicHash::Sha256).toHex()}};
}

} // namespace vlt::tava
