#include "page/TakeOverScript.h"

#include <QUrl>

namespace takeoverscript {

QString relativeUrl(const QString& url)
{
    const QUrl parsed(url);
    QString relative = parsed.path(QUrl::FullyEncoded) + QLatin1Char('?') + parsed.query(QUrl::FullyEncoded);
    // The only character that full encoding leaves and that would end the script's text.
    relative.replace(QLatin1Char('\''), QLatin1String("%27"));
    return relative;
}

QString script(const QString& relativeUrl, const QString& injectScript)
{
    return QStringLiteral("history.replaceState(null,'','%1');\n").arg(relativeUrl) + injectScript +
           QStringLiteral("\nvar _event = document.createEvent('CustomEvent');\n") +
           QStringLiteral("_event.initCustomEvent('ON_APP_OPENFILE_READY', true, true, {url: '%1'});\n")
               .arg(relativeUrl) +
           QStringLiteral("window.dispatchEvent(_event);");
}

} // namespace takeoverscript
