#include "nvltcloudmodule/CloudWidgets.h"

extern "C" Q_DECL_EXPORT NVltCloudWidgets* CreateVltCloudWidgetsProxy(const QString& addOnName);

NVltCloudWidgets* CreateVltCloudWidgetsProxy(const QString& addOnName)
{
    return new vltcloud::CloudWidgets(addOnName);
}
