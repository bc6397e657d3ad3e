#pragma once

#include "nheliostat/PreparedViews.h"

#include <QPointer>

class QWebEngineProfile;

namespace nheliostat::browser {

class BrowserEnvironment;
class WebViewContainer;

/** Makes views in advance on Qt WebEngine. Owned by the environment. */
class PreparedViewStore final : public host::PreparedViews
{
public:
    explicit PreparedViewStore(BrowserEnvironment& environment);
    ~PreparedViewStore() override;

    NxWebViewContainer* make(QWidget* holder, Listener listener) override;
    void serve(NxWebViewContainer* view, const QVector<NHelioLocalPathPair>& directories) override;
    void load(NxWebViewContainer* view, const QUrl& url) override;
    void wipe(NxWebViewContainer* view, QWidget* holder, Listener listener) override;
    qint64 renderer(const NxWebViewContainer* view) const override;
    NHelioBrowserWidgetBase* makeBrowser(QWidget* parent, const QString& id, const QString& name,
                                         NxWebViewContainer* view) override;

private:
    static void listen(WebViewContainer* view, Listener listener);

    BrowserEnvironment& m_environment;
};

} // namespace nheliostat::browser
