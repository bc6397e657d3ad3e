#include "bridge/CloudWidgets.h"

#include "nrt/dirs.h"
#include "nrt/modules.h"
#include "nvltcloudmodule/NVltCloudWidgets.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NPlugin.h"

#include <QLibrary>
#include <QStringList>

namespace cloudwidgets {
namespace {

const QString moduleName = QStringLiteral("nvltcloudmodule");

/** Where the module may lie, in the order in which the places are looked at. */
QStringList directories()
{
    NCoreApplication* core = NCoreApplication::instance();
    NPluginManager* plugins = core ? core->getPluginManager() : nullptr;
    QStringList all{kpluginconfig::getPluginPath(moduleName, QString()),
                    plugins ? plugins->getPluginPath(moduleName, true) : QString(),
                    nrt::dirs::frameworksDir() + QStringLiteral("/addons/") + moduleName};
    all.removeAll(QString());
    return all;
}

CreateVltCloudWidgetsProxyFunction factory()
{
    for (const QString& directory : directories()) {
        QLibrary library(directory + QLatin1Char('/') + nrt::getLibFileName(moduleName));
        if (const QFunctionPointer create = library.resolve("CreateVltCloudWidgetsProxy"))
            return reinterpret_cast<CreateVltCloudWidgetsProxyFunction>(create);
    }
    return nullptr;
}

} // namespace

std::unique_ptr<NVltCloudWidgets> create()
{
    const CreateVltCloudWidgetsProxyFunction make = factory();
    return std::unique_ptr<NVltCloudWidgets>(make ? make(QStringLiteral("skyleaf")) : nullptr);
}

} // namespace cloudwidgets
