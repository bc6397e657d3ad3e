#include "FakePreloadLibrary.h"

// The library with (or, for EMPTY, without) the functions that the add-on asks for.

#ifndef EMPTY
namespace {

FakePreloadHooks* used = nullptr;

} // namespace

extern "C" {

Q_DECL_EXPORT void useHooks(FakePreloadHooks* hooks)
{
    used = hooks;
}

Q_DECL_EXPORT bool CreatePreloadContainer(const QString& name)
{
    used->calls << QStringLiteral("create ") + name;
    return used->create(name);
}

Q_DECL_EXPORT bool CreateHelioBrowserByPreloadContainer(const QString& name, QWidget* page,
                                                        NHelioBrowserCreator* creator,
                                                        const NHelioBrowserCreateInfo& info)
{
    used->calls << QStringLiteral("hand %1 %2 %3").arg(name, info.name, QString::number(info.browserType));
    return used->handOver(page, creator);
}

Q_DECL_EXPORT void RecordBrowserFeatureUsed(const QString& name)
{
    used->calls << QStringLiteral("record ") + name;
}

Q_DECL_EXPORT bool RecoveryContainer(const QString& name, NxWebViewContainer* container)
{
    used->calls << QStringLiteral("recover ") + name;
    return used->takeBack(container);
}
}
#endif
