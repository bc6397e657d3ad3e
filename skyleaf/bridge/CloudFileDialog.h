#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class QWidget;

/** The shell's dialogs for choosing what is uploaded and where downloads go. User-interface thread. */
namespace cloudfiledialog {

enum class Kind { UploadFiles, UploadFolders, DownloadDirectory };

/** What the dialog library is told; `initialDir` is where the dialog starts. */
QMap<QString, QString> properties(Kind kind, const QString& initialDir);

/** Shows the dialog and waits for it. Empty when the user cancels or there is no dialog library. */
QStringList choose(Kind kind, const QString& initialDir, QWidget* parent);

} // namespace cloudfiledialog
