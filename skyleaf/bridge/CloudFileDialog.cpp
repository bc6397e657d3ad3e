#include "bridge/CloudFileDialog.h"

#include "base/NReadOnce.h"
#include "ncloudfiledialog/NCfdInputBoxBase.h"
#include "nheliostat/NHelioApplication.h"
#include "nrt/dirs.h"
#include "nrt/modules.h"
#include "nrt/product.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

#include <memory>

namespace cloudfiledialog {
namespace {

const QString libraryName = QStringLiteral("ncloudfiledialog");
const QString anyFilter = QStringLiteral(" |*.xxx");

QString titleOf(Kind kind)
{
    return kind == Kind::DownloadDirectory
               ? QCoreApplication::translate("NHelioCloudDocsAsynJsObj", "choose download path")
               : QCoreApplication::translate("NHelioCloudDocsAsynJsObj", "upload to cloud");
}

QString configuredDirectory()
{
    const QString configured = kpluginconfig::getPluginPath(libraryName, QString());
    if (!configured.isEmpty())
        return configured;
    NCoreApplication* core = NCoreApplication::instance();
    NPluginManager* plugins = core ? core->getPluginManager() : nullptr;
    return plugins ? plugins->getPluginPath(libraryName, true) : QString();
}

/** Empty when the library is not there. */
QString findLibrary()
{
    QString directory = QDir::toNativeSeparators(configuredDirectory());
    if (directory.isEmpty())
        return {};
    const QString installRoot = nrt::dirs::officeInstallRoot();
    const QString frameworks = nrt::dirs::frameworksDir();
    if (directory.startsWith(installRoot) && !frameworks.startsWith(installRoot))
        directory = QDir::toNativeSeparators(QStringLiteral("%1/addons/%2").arg(frameworks, libraryName));
    const QString path = directory + QDir::separator() + nrt::getLibFileName(libraryName);
    return QFileInfo(path).isFile() ? path : QString();
}

struct Destroy
{
    void operator()(NCfdInputBoxBase* dialog) const { dialog->destroy(); }
};
using Dialog = std::unique_ptr<NCfdInputBoxBase, Destroy>;

/** Null when the library is missing or of another kind. */
Dialog createFileDialog()
{
    static NReadOnce<QString> path(&findLibrary);
    if (path().isEmpty())
        return nullptr;
    QLibrary library(path());
    const auto create =
        reinterpret_cast<CreateCfdInputBoxProxyFunction>(library.resolve("CreateCfdInputBoxProxy"));
    return Dialog(create ? create() : nullptr);
}

} // namespace

QMap<QString, QString> properties(Kind kind, const QString& initialDir)
{
    const QString on = QStringLiteral("1");
    const QString off = QStringLiteral("0");
    QMap<QString, QString> all{
        {QStringLiteral("Title"), titleOf(kind)},
        {QStringLiteral("ConfirmButton"), QCoreApplication::translate("NHelioCloudDocsAsynJsObj", "ok")},
        {QStringLiteral("InitialDir"), initialDir},
        {QStringLiteral("Index"), QStringLiteral("2")},
        {QStringLiteral("AppName"), nrt::product::applicationName()},
        {QStringLiteral("AllowMultiSel"), on},
        {QStringLiteral("IsCloudCmdTag"), off},
        {QStringLiteral("IsShowRecentTab"), off},
        {QStringLiteral("IsShowCloudTab"), off},
    };
    switch (kind) {
    case Kind::UploadFiles:
        all.insert(QStringLiteral("selectedFilter"),
                   QStringLiteral("usualfile(*.vs; *.vst; *.xls; *.xlt; *.xlsx; *.xlsm; *.xltx; *.xltm; "
                                  "*.xlsb)"));
        all.insert(QStringLiteral("IsUpLoadFileDialog"), on);
        all.insert(QStringLiteral("BusinessFrom"), QStringLiteral("FD_CloudDocs_ShowOpenFile"));
        break;
    case Kind::UploadFolders:
        all.insert(QStringLiteral("Filter"), anyFilter);
        all.insert(QStringLiteral("IsOpenDirDialog"), on);
        all.insert(QStringLiteral("AllowSelRoot"), off);
        all.insert(QStringLiteral("BusinessFrom"), QStringLiteral("FD_CloudDocs_ShowOpenDir"));
        break;
    case Kind::DownloadDirectory:
        all.insert(QStringLiteral("allFilter"), anyFilter);
        all.insert(QStringLiteral("IsOpenSaveFileDialog"), on);
        all.insert(QStringLiteral("AllowSelRoot"), on);
        all.insert(QStringLiteral("BusinessFrom"), QStringLiteral("FD_CloudDocs_ShowSaveFile"));
        break;
    }
    return all;
}

namespace {

QStringList choose(Kind kind, const QString& initialDir, QWidget* parent)
{
    const Dialog dialog = createFileDialog();
    if (!dialog)
        return {};
    dialog->init(0, 0, properties(kind, initialDir), {}, false);
    const NHelioApplication* application = NHelioApplication::instance();
    if (const NHelioSkin* skin = application ? application->helioSkin() : nullptr)
        dialog->setPalette(skin->palette(QStringLiteral("FileDialog")));
    dialog->setLocalEnabled(true);
    NCfdOutput output;
    return dialog->exec(parent, kind == Kind::DownloadDirectory ? 0 : 1, output);
}

} // namespace

QStringList showUploadFileDialog(const QString& initialDir, QWidget* parent)
{
    return choose(Kind::UploadFiles, initialDir, parent);
}

QStringList showUploadFolderDialog(const QString& initialDir, QWidget* parent)
{
    return choose(Kind::UploadFolders, initialDir, parent);
}

QString showDownloadPathDialog(const QString& initialDir, QWidget* parent)
{
    return choose(Kind::DownloadDirectory, initialDir, parent).value(0);
}

} // namespace cloudfiledialog
