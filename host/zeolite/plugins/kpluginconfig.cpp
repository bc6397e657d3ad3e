#include "zeolite/NPlugin.h"

#include "nrt/dirs.h"

#include <QFileInfo>

namespace kpluginconfig {

QString getPluginPath(const QString& name, const QString& version)
{
    Q_UNUSED(version) // one version of each is installed
    const QString path = nrt::dirs::frameworksDir() + QStringLiteral("/addons/") + name;
    const bool isPlainName = !name.isEmpty() && !name.contains(QLatin1Char('/'));
    return isPlainName && QFileInfo(path).isDir() ? path : QString();
}

} // namespace kpluginconfig
