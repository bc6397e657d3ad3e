#include "nrt/kcc.h"

#include <memory>
#include <mutex>

#include "nrt/KeyValueFile.h"
#include "nrt/RuntimeSetup.h"

namespace nrt::kcc {
namespace {

struct OpenStore
{
    std::mutex mutex;
    QString path;
    std::shared_ptr<KeyValueFile> file;
};

/** The store of the data directory in force; opened on first use and again when that directory changes. */
std::shared_ptr<KeyValueFile> store()
{
    static OpenStore open;

    const QString path = runtime::setup()->dataDir + QStringLiteral("/kcc.store");
    const std::lock_guard<std::mutex> lock(open.mutex);
    if (!open.file || open.path != path) {
        open.file = std::make_shared<KeyValueFile>(path);
        open.path = path;
    }
    return open.file;
}

QVariant orDefault(const QVariant& stored, const QVariant& defaultValue)
{
    return stored.isValid() ? stored : defaultValue;
}

} // namespace

QString pluginPerfix()
{
    return QStringLiteral("plugins/");
}

QVariant value(const QString& key, const QVariant& defaultValue)
{
    return orDefault(store()->value(key), defaultValue);
}

QVariant flushRead(const QString& key, const QVariant& defaultValue)
{
    const auto file = store();
    file->refresh();
    return orDefault(file->value(key), defaultValue);
}

void setValue(const QString& key, const QVariant& value)
{
    store()->setValue(key, value);
}

void flushWrite(const QString& key, const QVariant& value)
{
    store()->setValue(key, value);
}

} // namespace nrt::kcc
