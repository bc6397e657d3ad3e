#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"

#include <QPointer>

/** The tab of one page: its text and icon. Lives until the page leaves its window. */
class ShellTab final : public NHelioTab
{
    Q_OBJECT
public:
    explicit ShellTab(NHelioAppPage* page, QObject* parent = nullptr);

    /** The page; to be compared only, it may be dying. */
    const NHelioAppPage* key() const { return m_key; }
    NHelioAppPage* page() const { return m_page; }
    NHelioSubPage* subPage() const { return m_subPage; }

    /** The sub page's title, else the page's. */
    QString text() const;
    /** Null for none. */
    QIcon icon(qreal devicePixelRatio) const;
    bool isClosable() const;

    bool tryClose() override;
    void setAllowReAttachSubwindow(bool allow) override;
    /** Brings the page back into its window when that was allowed; a window that it stood in is closed. */
    void reAttachSubPage(QWidget* window) override;

Q_SIGNALS:
    /** The text or the icon changed. */
    void changed();

private:
    const NHelioAppPage* m_key;
    QPointer<NHelioAppPage> m_page;
    QPointer<NHelioSubPage> m_subPage;
    QPointer<NHelioTabDelegate> m_delegate;
    bool m_allowReAttach = false;
};
