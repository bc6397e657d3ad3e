#include "nheliostat/documents/LocalDocumentSubPage.h"

#include <QFileInfo>

namespace {

class Delegate final : public NHelioTabDelegate
{
public:
    Delegate(NHelioSubPage* subPage, QObject* parent)
        : NHelioTabDelegate(parent)
        , m_subPage(subPage)
    {
        connect(subPage, &NHelioSubPage::windowTitleChanged, this, &NHelioTabDelegate::iconChanged);
    }
    QIcon getIcon(qreal) const override
    {
        return m_subPage ? helioFileIcon(QFileInfo(m_subPage->windowTitle()).suffix()) : QIcon();
    }

private:
    QPointer<NHelioSubPage> m_subPage;
};

} // namespace

NHelioTabDelegate* LocalDocumentSubPage::createTabDelegate(QObject* parent)
{
    return new Delegate(this, parent);
}
