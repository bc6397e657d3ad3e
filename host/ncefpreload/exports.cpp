#include "ncefpreload/ContainerPool.h"
#include "ncefpreload/NCefPreload.h"
#include "nrt/NSettings.h"

#include <QCoreApplication>
#include <QPointer>

// "preloadContainer/perName" of the common settings says how many are kept under a name.

namespace {

using ncefpreload::ContainerPool;

ContainerPool::Setup setupOf(nheliostat::host::PreparedViews* views)
{
    ContainerPool::Setup setup;
    nrt::NCCCommonSettings settings;
    settings.beginGroup(QStringLiteral("preloadContainer"));
    setup.perName = settings.value(QStringLiteral("perName"), setup.perName).toInt();
    setup.views = views;
    return setup;
}

/** Null while there are no browsers. */
ContainerPool* pool()
{
    static QPointer<ContainerPool> existing;
    QCoreApplication* const application = QCoreApplication::instance();
    nheliostat::host::PreparedViews* const views = nheliostat::host::preparedViews();
    if (!application || !views)
        return nullptr;
    if (!existing) {
        existing = new ContainerPool(setupOf(views));
        existing->setParent(application);
        QObject::connect(application, &QCoreApplication::aboutToQuit, existing.data(), &ContainerPool::close);
    }
    return existing;
}

} // namespace

extern "C" {
Q_DECL_EXPORT bool CreatePreloadContainer(const QString& name);
Q_DECL_EXPORT bool CreateHelioBrowserByPreloadContainer(const QString& name, QWidget* page,
                                                        NHelioBrowserCreator* creator,
                                                        const NHelioBrowserCreateInfo& info);
Q_DECL_EXPORT void RecordBrowserFeatureUsed(const QString& name);
Q_DECL_EXPORT bool RecoveryContainer(const QString& name, NxWebViewContainer* container);
}

bool CreatePreloadContainer(const QString& name)
{
    ContainerPool* const kept = pool();
    return kept && kept->want(name);
}

bool CreateHelioBrowserByPreloadContainer(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                                          const NHelioBrowserCreateInfo& info)
{
    ContainerPool* const kept = pool();
    return kept && kept->hand(name, page, creator, info);
}

void RecordBrowserFeatureUsed(const QString& name)
{
    // What was opened is read from the usage record when the next front end is chosen.
    Q_UNUSED(name)
}

bool RecoveryContainer(const QString& name, NxWebViewContainer* container)
{
    ContainerPool* const kept = pool();
    return kept && kept->takeBack(name, container);
}
