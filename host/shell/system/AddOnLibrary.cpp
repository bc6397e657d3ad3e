#include "shell/system/AddOnLibrary.h"

#include <QDir>
#include <QLibrary>

namespace shell {

QString loadAddOnLibrary(const QString& directory, const QString& name)
{
    QLibrary library(QDir(directory).filePath(QStringLiteral("lib%1.so").arg(name)));
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    return library.load() ? QString() : library.errorString();
}

} // namespace shell
