#pragma once

#include <QString>
#include <QVector>

namespace nheliostat::browser {

/** A page that the user wants opened at start. */
struct StartupPage
{
    QString url;
    QString title;
};

/** The pages kept in a JSON file, at most 100; a missing or unreadable file holds none. */
QVector<StartupPage> readStartupPages(const QString& file);
/** Adds a page, or gives the page of that URL the new title. False when the file cannot be written, or is
 * full. */
bool addStartupPage(const QString& file, const StartupPage& page);

} // namespace nheliostat::browser
