#pragma once

#include <QString>

#include <optional>

/** One step of the decision whether a page is served from a local package. */
struct NProxyDecisionStep
{
    QString stepName;
    QString errorMessage = QStringLiteral("no_error");
    std::optional<QString> resetFrontVer; //!< the version that the proxies are to be reset to

    // The page load that the step belongs to.
    QString traceId;
    QString pluginState;
    QString frontVer;
    QString pluginName;
    QString officeType;
    QString notifyUrl;
    QString pluginVersion;
};

/** Posts the step as the event "docs_localproxy_dop_result". */
void reportProxyDecision(const NProxyDecisionStep& step);
