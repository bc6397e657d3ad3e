#include "page/ClientIdentity.h"

#include "base/NReadOnce.h"
#include "zeolite/NCoreApplication.h"

namespace clientidentity {

QByteArray tokenOf(QString userAgent)
{
    userAgent.replace(QLatin1String("pc-office"), QLatin1String("pc-vltbrowser"));
    return userAgent.toUtf8().toBase64(QByteArray::Base64UrlEncoding);
}

QByteArray token()
{
    static NReadOnce<QByteArray> read([] { return tokenOf(NxUserAgentUtil::getUserAgent()); });
    return read();
}

} // namespace clientidentity
