#pragma once

#include <QString>

/**
 * The directory of the local storage package of a local id; empty without the shell, without a directory of
 * the user, or for an id that is no plain name.
 */
QString localPckRootPath(const QString& localId);
