#pragma once

#include "ncefpreload/FrontEnds.h"
#include "ncefpreload/MemoryLimits.h"
#include "nheliostat/PreparedViews.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace ncefpreload {

/**
 * The containers that are kept, each with a hidden web view and its renderer process: by default 1 under a
 * name, at most 3 in all, within the limits of memory. User-interface thread.
 *
 * A container is made when nobody has asked for one for a while, so that it does not take time from the
 * opening that asked. One whose renderer ends is dropped and replaced at the next wish only.
 */
class ContainerPool final : public QObject
{
    Q_OBJECT
public:
    struct Setup
    {
        nheliostat::host::PreparedViews* views =
            nullptr;             //!< outlives the pool, or its `close` is called before it goes
        int perName = 1;         //!< 1 to 3
        int idleMs = 1500;       //!< from the last wish until a container is made
        int loadLimitMs = 30000; //!< a front end that takes longer is given up
        MemoryLimits memory;
        std::function<FrontEnd()> frontEnd = &frontEndToPrepare;
        std::function<QString(const QString& officeType)> version = &versionInForce;
        std::function<qint64(qint64 process)> residentBytes = &ncefpreload::residentBytes;
        std::function<qint64()> availableBytes = &ncefpreload::availableBytes;
    };

    explicit ContainerPool(Setup setup);
    ~ContainerPool() override;

    // As the exports of the library answer.
    bool want(const QString& name);
    bool hand(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
              const NHelioBrowserCreateInfo& info);
    bool takeBack(const QString& name, NxWebViewContainer* view);

    /** Destroys what is kept, and keeps nothing from then on. */
    void close();

private:
    struct Kept
    {
        QString name;
        QPointer<NxWebViewContainer> view;
        FrontEnd frontEnd;
        bool isReady = false;
        bool isBlank = false; //!< the front end could not be loaded
        std::unique_ptr<QTimer> loadLimit;
    };
    using KeptPtr = std::shared_ptr<Kept>;

    bool hasRoom(const QString& name) const;
    bool isMemoryShort() const;
    bool isUsable(const NxWebViewContainer* view) const;
    nheliostat::host::PreparedViews::Listener listenerOf(const KeptPtr& kept);
    void makeWanted();
    void make(const QString& name);
    void prepare(const KeptPtr& kept);
    void endLoad(const KeptPtr& kept, bool ok);
    void describe(const Kept& kept) const;
    void drop(const KeptPtr& kept);
    void deliver(const KeptPtr& kept, QWidget* page, NHelioBrowserCreator* creator,
                 const NHelioBrowserCreateInfo& info);

    const Setup m_setup;
    std::unique_ptr<QWidget> m_holder;
    QVector<KeptPtr> m_kept;
    QStringList m_wanted;
    QTimer m_idle;
    bool m_isClosed = false;
};

} // namespace ncefpreload
