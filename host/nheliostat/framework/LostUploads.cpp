#include "nheliostat/framework/LostUploads.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool isIn(const QString& path, const QString& folder)
{
    return path.startsWith(folder) && (folder.endsWith(u'/') || path.midRef(folder.size()).startsWith(u'/'));
}

} // namespace

void LostUploads::begin(const Order& order)
{
    for (const QString& path : order.paths) {
        const auto isAgain = [&path](const Lost& lost) { return lost.path == path || isIn(lost.path, path); };
        m_lost.erase(std::remove_if(m_lost.begin(), m_lost.end(), isAgain), m_lost.end());
        for (Lost& lost : m_lost) {
            if (isIn(path, lost.path))
                lost.orderedAgain.insert(path);
        }
    }
}

void LostUploads::lose(const Order& order, const QString& message)
{
    begin(order);
    for (const QString& path : order.paths)
        m_lost.append({order.groupId, order.parentId, message, path, {}});
}

void LostUploads::addStates(const QString& joinedPaths, QMap<QString, QString>& values) const
{
    if (m_lost.isEmpty())
        return;
    for (const QString& path : joinedPaths.split(u'|', Qt::SkipEmptyParts)) {
        const Lost* lost = find(path);
        if (!lost)
            continue;
        const QString message =
            QString::fromLatin1(lost->message.toUtf8().toBase64(QByteArray::Base64UrlEncoding));
        const QString size = QString::number(QFileInfo(path).size());
        values.insert(
            path + QStringLiteral("_result"),
            QStringList{QStringLiteral("0"), lost->groupId, lost->parentId, path, size, {}, {}}.join(u'|'));
        values.insert(path, QStringLiteral("fail/0/service//order/") + message);
    }
}

const LostUploads::Lost* LostUploads::find(const QString& path) const
{
    const auto found = std::find_if(m_lost.begin(), m_lost.end(), [&path](const Lost& lost) {
        return lost.path == path || (isIn(path, lost.path) && !lost.orderedAgain.contains(path));
    });
    return found == m_lost.end() ? nullptr : &*found;
}
