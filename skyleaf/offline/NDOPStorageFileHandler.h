#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"
#include "tava/TavaIpcResult.h"

#include <optional>

/**
 * The script handler "docs.storage.file": files inside a local storage package. A position that could lead
 * out of the package is an error; the package's own directory is only taken where a folder is made or a zip
 * unpacked. User-interface thread; files are read and written by tasks on Qt's pool, which go on when the
 * handler is gone.
 */
class NDOPStorageFileHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    using NDocsOfflinePageJSApiHandlerBase::NDocsOfflinePageJSApiHandlerBase;

public Q_SLOTS:
    void create(NxWebViewJSContext& context);
    void read(NxWebViewJSContext& context);
    void update(NxWebViewJSContext& context);
    void remove(NxWebViewJSContext& context);
    void unzip(NxWebViewJSContext& context);
    void readDataSteam(NxWebViewJSContext& context);
    void writeDataSteam(NxWebViewJSContext& context);

    void onUnzip(bool success, const QString& requestId, const TavaIpcResult& result);

private:
    enum class Target { Folder, File, Existing };

    /** The package's directory; none, with the error replied, without one. */
    std::optional<QString> packageRoot(NxWebViewJSContext& context, const QVariantMap& arguments) const;
    /** The path that the arguments name, free of links; none, with the error replied, for a wrong one. */
    std::optional<QString> targetPath(NxWebViewJSContext& context, const QVariantMap& arguments,
                                      Target target) const;
    /** Starts a task that answers ok or `failure` to the callback. */
    template <typename Task>
    void startWriting(Task* task, const NxWebViewJSCallback& callback, const QString& ok,
                      const QString& failure);
};
