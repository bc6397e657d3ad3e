#pragma once

#include <QMap>
#include <QPalette>
#include <QString>
#include <QStringList>

class QWidget;

/** What the user did in the dialog besides choosing. */
struct NCfdOutput
{
    QString directory; //!< where the dialog stood when it was closed
};

/**
 * A file dialog of the cloud, made by the library "ncloudfiledialog". Used in the order of the operations.
 * User-interface thread.
 *
 * Properties: "Title", "ConfirmButton", "InitialDir", "Index", "AppName", "AllowMultiSel", "Filter",
 * "allFilter", "selectedFilter", "IsOpenDirDialog", "IsUpLoadFileDialog", "IsOpenSaveFileDialog",
 * "AllowSelRoot", "BusinessFrom", …; flags are "0" or "1".
 */
class NCfdInputBoxBase
{
public:
    virtual void init(int left, int top, const QMap<QString, QString>& properties,
                      const QMap<QString, QString>& options, bool isCloudFirst) = 0;
    virtual void setPalette(const QPalette& palette) = 0;
    /** Whether places of the local machine can be chosen. */
    virtual void setLocalEnabled(bool enabled) = 0;
    /** Modal. The chosen paths; empty when the user cancelled. */
    virtual QStringList exec(QWidget* parent, int mode, NCfdOutput& output) = 0;
    /** Ends the object. */
    virtual void destroy() = 0;

protected:
    ~NCfdInputBoxBase() = default;
};

/** The library's export "CreateCfdInputBoxProxy"; the caller ends the object with `destroy`. */
using CreateCfdInputBoxProxyFunction = NCfdInputBoxBase* (*)();
