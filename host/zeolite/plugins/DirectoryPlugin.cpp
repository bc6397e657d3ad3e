#include "zeolite/plugins/DirectoryPlugin.h"

#include "nrt/files.h"

#include <QDir>

namespace {

constexpr qint64 longestVersion = 4096;

/** Empty when the directory is missing or not complete. */
QString versionOf(const QString& directory)
{
    if (directory.isEmpty())
        return {};
    const QString path = QDir(directory).filePath(QStringLiteral("version"));
    return QString::fromUtf8(nrt::files::read(path, longestVersion).bytes).trimmed();
}

} // namespace

DirectoryPlugin::DirectoryPlugin(QString name, QString directory)
    : m_name(std::move(name))
    , m_directory(std::move(directory))
{
}

bool DirectoryPlugin::isComplete(const QString& directory)
{
    return !versionOf(directory).isEmpty();
}

QString DirectoryPlugin::name() const
{
    return m_name;
}

int DirectoryPlugin::load(int priority, int options)
{
    Q_UNUSED(priority)
    Q_UNUSED(options)
    const QString version = versionOf(m_directory);
    const State reached = version.isEmpty() ? LoadFailed : Loaded;
    const bool isNews = reached == LoadFailed || m_state != Loaded || m_version != version;
    m_version = version;
    m_state = reached;
    if (isNews)
        QMetaObject::invokeMethod(this, m_state == Loaded ? &NPlugin::loadSuccess : &NPlugin::loadFailed,
                                  Qt::QueuedConnection);
    return m_state;
}

NPlugin::State DirectoryPlugin::state() const
{
    return m_state;
}

QString DirectoryPlugin::localPath() const
{
    return m_state == Loaded ? m_directory : QString();
}

QVariant DirectoryPlugin::getProp(const QString& name) const
{
    const bool known = m_state == Loaded && name == QLatin1String("version");
    return known ? QVariant(m_version) : QVariant();
}

void DirectoryPlugin::setDirectory(const QString& directory)
{
    m_directory = directory;
    rescan();
}

void DirectoryPlugin::rescan()
{
    if (m_state != NotLoaded)
        load();
}
