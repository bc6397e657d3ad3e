#include "ncefpreload/ContainerPool.h"

#include "ncefpreload/NCefPreload.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewContainer.h"

#include <algorithm>

namespace ncefpreload {

namespace {

const QString logTag = QStringLiteral("ncefpreload");
constexpr int most = 3;
constexpr int chromiumBrowserType = 2;
constexpr const char* properties[] = {docFrameworkProperty, domainProperty, officeTypeProperty,
                                      frontVerProperty, injectArrayProperty};

void log(const QString& text)
{
    NxLoggerLite::writeInfo(logTag, text);
}

} // namespace

ContainerPool::ContainerPool(Setup setup)
    : m_setup(std::move(setup))
    , m_holder(std::make_unique<QWidget>())
{
    m_holder->setObjectName(QStringLiteral("preparedViews"));
    m_idle.setSingleShot(true);
    m_idle.setInterval(m_setup.idleMs);
    connect(&m_idle, &QTimer::timeout, this, &ContainerPool::makeWanted);
}

ContainerPool::~ContainerPool() = default;

void ContainerPool::close()
{
    m_isClosed = true;
    m_idle.stop();
    m_wanted.clear();
    m_kept.clear();
    m_holder.reset();
}

bool ContainerPool::hasRoom(const QString& name) const
{
    const auto hasName = [&name](const KeptPtr& kept) { return kept->name == name; };
    const auto ofName = std::count_if(m_kept.cbegin(), m_kept.cend(), hasName);
    return ofName < qBound(1, m_setup.perName, most) && m_kept.size() < most;
}

bool ContainerPool::isMemoryShort() const
{
    return m_setup.availableBytes() < m_setup.memory.leastAvailable;
}

/** Whether the renderer lives and is not too large. */
bool ContainerPool::isUsable(const NxWebViewContainer* view) const
{
    const qint64 bytes = m_setup.residentBytes(view ? m_setup.views->renderer(view) : 0);
    return bytes > 0 && bytes <= m_setup.memory.largestRenderer;
}

bool ContainerPool::want(const QString& name)
{
    if (m_isClosed || name.isEmpty() || isMemoryShort())
        return false;
    if (!hasRoom(name))
        return std::any_of(m_kept.cbegin(), m_kept.cend(),
                           [&](const KeptPtr& kept) { return kept->name == name; });
    m_wanted << name;
    m_wanted.removeDuplicates();
    m_idle.start();
    return true;
}

void ContainerPool::makeWanted()
{
    const QStringList names = std::exchange(m_wanted, {});
    for (const QString& name : names) {
        if (hasRoom(name) && !isMemoryShort())
            make(name);
    }
}

void ContainerPool::make(const QString& name)
{
    const auto kept = std::make_shared<Kept>();
    kept->name = name;
    kept->view = m_setup.views->make(m_holder.get(), listenerOf(kept));
    if (!kept->view)
        return;
    m_kept << kept;
    prepare(kept);
}

nheliostat::host::PreparedViews::Listener ContainerPool::listenerOf(const KeptPtr& kept)
{
    // Weak both ways: the view keeps the listener, and the pool may go before it.
    const QPointer<ContainerPool> self(this);
    const std::weak_ptr<Kept> weak = kept;
    const auto withKept = [self, weak](auto then) {
        const KeptPtr known = weak.lock();
        if (self && known)
            then(*self, known);
    };
    return {[withKept](bool ok) {
                withKept([ok](ContainerPool& pool, const KeptPtr& known) { pool.endLoad(known, ok); });
            },
            [withKept] { withKept([](ContainerPool& pool, const KeptPtr& known) { pool.drop(known); }); }};
}

/** Loads the front end that is used most, or a blank page when there is none. */
void ContainerPool::prepare(const KeptPtr& kept)
{
    for (const char* const name : properties)
        kept->view->setProperty(name, QVariant());
    kept->isReady = false;
    kept->frontEnd = m_setup.frontEnd();
    kept->isBlank = kept->frontEnd.officeType.isEmpty();
    kept->loadLimit = std::make_unique<QTimer>();
    kept->loadLimit->setSingleShot(true);
    connect(kept->loadLimit.get(), &QTimer::timeout, this, [this, weak = std::weak_ptr<Kept>(kept)] {
        if (const KeptPtr known = weak.lock())
            endLoad(known, false);
    });
    kept->loadLimit->start(m_setup.loadLimitMs);
    m_setup.views->serve(kept->view, kept->frontEnd.directories);
    m_setup.views->load(kept->view, kept->isBlank ? QUrl(QStringLiteral("about:blank")) : kept->frontEnd.url);
}

void ContainerPool::endLoad(const KeptPtr& kept, bool ok)
{
    if (!m_kept.contains(kept) || !kept->view || kept->isReady)
        return;
    if (!ok && kept->isBlank) {
        drop(kept);
        return;
    }
    if (!ok) {
        log(QStringLiteral("%1 cannot be loaded in advance").arg(kept->frontEnd.url.toString()));
        kept->isBlank = true;
        kept->view->clearLocalResourceCache();
        kept->loadLimit->start(m_setup.loadLimitMs);
        m_setup.views->load(kept->view, QUrl(QStringLiteral("about:blank")));
        return;
    }
    kept->loadLimit->stop();
    if (!isUsable(kept->view)) {
        drop(kept);
        return;
    }
    kept->isReady = true;
    describe(*kept);
    log(QStringLiteral("kept for \"%1\", front end \"%2\" %3")
            .arg(kept->name, kept->isBlank ? QString() : kept->frontEnd.officeType, kept->frontEnd.version));
}

void ContainerPool::describe(const Kept& kept) const
{
    // Documents get here only with a package of their kind, so a front end of the site only warms the browser
    // up.
    const bool isOffered = !kept.isBlank && kept.frontEnd.isLocal();
    kept.view->setProperty(docFrameworkProperty, isOffered);
    if (!isOffered)
        return;
    const bool isInForce = m_setup.version(kept.frontEnd.officeType) == kept.frontEnd.version;
    kept.view->setProperty(domainProperty, kept.frontEnd.domain);
    kept.view->setProperty(officeTypeProperty, kept.frontEnd.officeType);
    kept.view->setProperty(frontVerProperty, isInForce ? QString() : kept.frontEnd.version);
    kept.view->setProperty(injectArrayProperty, kept.frontEnd.injectArray);
}

void ContainerPool::drop(const KeptPtr& kept)
{
    m_kept.removeOne(kept);
    if (kept->view) {
        log(QStringLiteral("dropped for \"%1\"").arg(kept->name));
        kept->view->destroyLater();
    }
    kept->view.clear();
}

bool ContainerPool::hand(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                         const NHelioBrowserCreateInfo& info)
{
    if (m_isClosed || !page || !creator || info.browserType != chromiumBrowserType)
        return false;
    const QVector<KeptPtr> all = m_kept;
    for (const KeptPtr& kept : all) {
        if (kept->name != name || !kept->isReady)
            continue;
        if (!isUsable(kept->view)) {
            drop(kept);
            continue;
        }
        m_kept.removeOne(kept);
        describe(*kept); // a package may have been upgraded in the meantime
        const QPointer<QWidget> thePage(page);
        const QPointer<NHelioBrowserCreator> theCreator(creator);
        QMetaObject::invokeMethod(
            this, [this, kept, thePage, theCreator, info] { deliver(kept, thePage, theCreator, info); },
            Qt::QueuedConnection);
        return true;
    }
    return false;
}

/** A page that was promised a browser gets one, also when the view is gone by now. */
void ContainerPool::deliver(const KeptPtr& kept, QWidget* page, NHelioBrowserCreator* creator,
                            const NHelioBrowserCreateInfo& info)
{
    if (!page || !creator || m_isClosed) {
        if (kept->view && !m_isClosed && hasRoom(kept->name))
            m_kept << kept;
        else if (kept->view)
            kept->view->destroyLater();
        return;
    }
    creator->deliver(m_setup.views->makeBrowser(page, info.id, info.name, kept->view));
}

bool ContainerPool::takeBack(const QString& name, NxWebViewContainer* view)
{
    if (m_isClosed || name.isEmpty() || !view || !hasRoom(name) || isMemoryShort() || !isUsable(view))
        return false;
    const auto kept = std::make_shared<Kept>();
    kept->name = name;
    kept->view = view;
    m_setup.views->wipe(view, m_holder.get(), listenerOf(kept));
    m_kept << kept;
    m_wanted.removeAll(name);
    log(QStringLiteral("taken back for \"%1\"").arg(name));
    prepare(kept);
    return true;
}

} // namespace ncefpreload
