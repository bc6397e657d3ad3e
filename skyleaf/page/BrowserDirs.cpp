#include "page/BrowserDirs.h"

#include "base/NReadOnce.h"
#include "nrt/dirs.h"
#include "nrt/product.h"

#include <QDir>

namespace browserdirs {
namespace {

QString productName()
{
    static NReadOnce<QString> name([] {
        return nrt::product::configValue(QStringLiteral("PluginPlatformProductName"),
                                         QStringLiteral("value"));
    });
    return name().isEmpty() ? QStringLiteral("vlt") : name();
}

QString baseDirectory()
{
    const QString directory = nrt::dirs::maravelHome() + QLatin1Char('/') + productName() +
                              QStringLiteral("/addons/data/") + QStringLiteral("win-x64");
    QDir().mkpath(directory);
    return QDir::toNativeSeparators(directory) + QDir::separator();
}

} // namespace

BrowserDirs browserDirs()
{
    const QString own = baseDirectory() + QStringLiteral("ncloudpage") + QDir::separator();
    return {own + QStringLiteral("cache-v2"), own + QStringLiteral("cookies-v3")};
}

} // namespace browserdirs
