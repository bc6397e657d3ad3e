#include "vltcloudsvr/archive/EntryRules.h"

#include <QList>

#include <climits>
#include <sys/stat.h>

namespace vlt::cloudsvr {
namespace {

constexpr int longestPath = PATH_MAX / 2; //!< leaves room for the target's own path

bool hasDriveLetter(const QByteArray& name)
{
    return name.size() > 1 && name.at(1) == ':';
}

} // namespace

QString refusalOf(const QByteArray& name, quint32 unixMode)
{
    if (name.isEmpty() || name.contains('\0'))
        return QStringLiteral("an entry's name is empty or has a NUL in it");
    const QString shown = QString::fromUtf8(name.left(200));
    if (name.startsWith('/') || name.contains('\\') || hasDriveLetter(name))
        return QStringLiteral("the entry \"%1\" has no relative path").arg(shown);
    if (name.size() > longestPath)
        return QStringLiteral("the entry \"%1…\" has too long a name").arg(shown);
    const QByteArray path = name.endsWith('/') ? name.chopped(1) : name;
    for (const QByteArray& part : path.split('/')) {
        if (part.isEmpty() || part == "." || part == "..")
            return QStringLiteral("the entry \"%1\" leaves the target").arg(shown);
        if (part.size() > NAME_MAX)
            return QStringLiteral("the entry \"%1…\" has too long a name").arg(shown);
    }
    const quint32 kind = unixMode & S_IFMT;
    if (kind != 0 && kind != S_IFREG && kind != S_IFDIR)
        return QStringLiteral("the entry \"%1\" is neither a file nor a directory").arg(shown);
    return {};
}

} // namespace vlt::cloudsvr
