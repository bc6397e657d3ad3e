#pragma once

#include <QString>

/** Where the browsers of cloud documents pages keep their data. */
namespace browserdirs {

struct BrowserDirs
{
    QString cachePath;
    QString cookiePath;
};

/** The paths in native form; the directory that holds them is created when it is missing. */
BrowserDirs browserDirs();

} // namespace browserdirs
