#pragma once

#include <QString>

namespace nheliostat::browser {

/** A failed load as Chromium names it. */
struct NetError
{
    int code = 0;    //!< negative network error, or the HTTP status
    QString message; //!< "ERR_CONNECTION_REFUSED", "HTTP ERROR 502"
};

/** From the text that the browser's error page shows; an unknown text gets the code of ERR_FAILED. */
NetError netErrorFromText(const QString& text);
/** What the user reads about it: one sentence. */
QString explained(const NetError& error);

} // namespace nheliostat::browser
