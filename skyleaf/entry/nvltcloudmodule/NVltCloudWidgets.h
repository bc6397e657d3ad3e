#pragma once

#include <QString>
#include <QVariantMap>

/** Windows of the cloud that an add-on can open, made by the library "nvltcloudmodule". User-interface
 * thread. */
class NVltCloudWidgets
{
public:
    virtual ~NVltCloudWidgets() = default;
    /** Opens the window that "widgetType" names ("sendFileWindow") for the file of the arguments. */
    virtual void openWindow(const QVariantMap& arguments) = 0;
};

/** The library's export "CreateVltCloudWidgetsProxy"; the caller owns the object. */
using CreateVltCloudWidgetsProxyFunction = NVltCloudWidgets* (*)(const QString& addOnName);
