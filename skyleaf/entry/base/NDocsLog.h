#pragma once

#include <QLatin1String>
#include <QString>

/** The add-on's log lines: "message--Operation::name" under the tag "skyleaf". */
namespace ndocslog {

void info(const QString& message, const char* operation);
void warning(const QString& message, const char* operation);
void error(const QString& message, const char* operation);

/** The text of a line. */
QString line(const QString& message, const QString& operation);

} // namespace ndocslog
