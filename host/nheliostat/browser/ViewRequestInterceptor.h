#pragma once

#include "zeolite/NxWebViewContainer.h"

#include <QByteArray>
#include <QWebEngineUrlRequestInterceptor>

namespace nheliostat::browser {

/**
 * Marks the requests of one view with its id and lets a handler set request headers.
 *
 * It sees the requests of the view's frames and dedicated workers; those of service workers belong to no
 * view, carry no mark and keep the profile's user agent. User-interface thread.
 */
class ViewRequestInterceptor final : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT
public:
    ViewRequestInterceptor(QByteArray viewId, QByteArray userAgent, QObject* parent = nullptr);

    void setHeaderHandler(NxWebViewContainer::CustomHeaderHandler handler);
    void interceptRequest(QWebEngineUrlRequestInfo& info) override;

private:
    QByteArray m_viewId;
    QByteArray m_userAgent;
    NxWebViewContainer::CustomHeaderHandler m_handler;
};

} // namespace nheliostat::browser
