#include "FakePage.h"

#include "nheliostat/NHelioApplication.h"

#include <QCloseEvent>

namespace {

class FakeTabDelegate final : public NHelioTabDelegate
{
public:
    FakeTabDelegate(QObject* parent, FakeSubPage* subPage)
        : NHelioTabDelegate(parent)
        , m_subPage(subPage)
    {
    }
    QIcon getIcon(qreal) const override { return m_subPage ? m_subPage->icon : QIcon(); }

private:
    QPointer<FakeSubPage> m_subPage;
};

} // namespace

void FakeSubPage::doAttachContextMenuActions(QMenu* menu)
{
    menu->addAction(QStringLiteral("of the sub page"));
}

NHelioTabDelegate* FakeSubPage::createTabDelegate(QObject* parent)
{
    return new FakeTabDelegate(parent, this);
}

FakePage::FakePage(QString name, QStringList& log, QWidget* parent)
    : NHelioAppPage(parent)
    , title(name)
    , m_name(std::move(name))
    , m_log(log)
{
}

FakePage::~FakePage()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const bool inWindow = application && application->findRelativeHelioMainWindow(this);
    write(inWindow ? QStringLiteral("destroyed in its window") : QStringLiteral("destroyed"));
}

NHelioSubPage* FakePage::createSubPage(NHelioSubPages* subPages)
{
    write(QStringLiteral("createSubPage"));
    auto* subPage = new FakeSubPage(subPages);
    connect(subPage, &NHelioSubPage::subPageActived, this, &FakePage::onActived);
    return subPage;
}

void FakePage::load()
{
    released = false;
    write(QStringLiteral("load"));
}

void FakePage::releasePage()
{
    released = true;
    write(QStringLiteral("releasePage"));
}

void FakePage::handleNotifyParams(const QVariantMap& params)
{
    write(QStringLiteral("handleNotifyParams(%1)").arg(params.keys().join(u',')));
}

void FakePage::closeEvent(QCloseEvent* event)
{
    write(QStringLiteral("asked to close"));
    if (whenAskedToClose)
        whenAskedToClose();
    event->setAccepted(!refusesToClose);
}
