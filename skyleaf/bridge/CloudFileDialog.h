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

// Each shows its dialog and waits for it; empty when the user cancels or there is no dialog library.
QStringList showUploadFileDialog(const QString& initialDir, QWidget* parent);
QStringList showUploadFolderDialog(const QString& initialDir, QWidget* parent);
QString showDownloadPathDialog(const QString& initialDir, QWidget* parent);

} // namespace cloudfiledialog
