#pragma once

#include <QString>

/** The script that tells a running front end which document to open. */
namespace takeoverscript {

/** Path and query of a URL, fully encoded, and safe between single quotes. */
QString relativeUrl(const QString& url);

/** `relativeUrl` becomes the page's address; `injectScript` may be empty. */
QString script(const QString& relativeUrl, const QString& injectScript);

} // namespace takeoverscript
