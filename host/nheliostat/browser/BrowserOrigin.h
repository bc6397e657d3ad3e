#pragma once

#include <QString>
#include <QStringList>

class QUrl;

namespace nheliostat::browser {

/** The origin of an http or https URL ("https://docs.example.test:8443", default ports left out), else empty.
 */
QString originOf(const QUrl& url);

/** What the browser does with a navigation to a URL of some scheme. */
enum class SchemeUse {
    Browser,  //!< it can show it
    HandOver, //!< a supported protocol: the host's business
    Ignore
};

/** `supported` holds lower-case schemes. */
SchemeUse schemeUse(const QString& scheme, const QStringList& supported);

/**
 * Whether the browser sends requests for the URL's host through the application's proxy in a form that can be
 * answered locally: http always, https for the intercepted hosts. Loopback hosts bypass the proxy.
 */
bool isAnsweredLocally(const QUrl& url, const QStringList& interceptedHosts);

} // namespace nheliostat::browser
