#include "nheliostat/BrowserFactory.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NxLoggerLite.h"

#include <QMetaObject>

namespace {

constexpr int chromiumBrowserType = 2;

nheliostat::host::BrowserFactory& browserFactory()
{
    static nheliostat::host::BrowserFactory factory;
    return factory;
}

void createAndDeliver(QWidget* parent, NHelioBrowserCreator* creator, const QString& id, const QString& name)
{
    NHelioBrowserWidgetBase* browser = browserFactory() ? browserFactory()(parent, id, name) : nullptr;
    if (browser)
        creator->deliver(browser);
    else
        NxLoggerLite::writeError(QStringLiteral("nheliostat"),
                                 QStringLiteral("no browser for \"%1\"").arg(name));
}

} // namespace

void nheliostat::host::setBrowserFactory(BrowserFactory factory)
{
    browserFactory() = std::move(factory);
}

bool CreateHelioBrowserWidget(QWidget* parent, NHelioBrowserCreator* creator, int browserType,
                              const QString& id, const QString& name, int scriptApiFlags)
{
    Q_UNUSED(scriptApiFlags)
    if (!parent || !creator || browserType != chromiumBrowserType)
        return false;
    // The call is dropped with its context, the parent.
    const QPointer<NHelioBrowserCreator> waiting = creator;
    const auto create = [parent, waiting, id, name] {
        if (waiting)
            createAndDeliver(parent, waiting, id, name);
    };
    return QMetaObject::invokeMethod(parent, create, Qt::QueuedConnection);
}
