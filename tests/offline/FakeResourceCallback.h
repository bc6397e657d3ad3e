#pragma once

#include "zeolite/IWebViewResourceProviderCallback.h"

#include <atomic>
#include <mutex>
#include <vector>

/** A browser's request; records the answers. Any thread. */
class FakeResourceCallback final : public IWebViewResourceProviderCallback
{
public:
    explicit FakeResourceCallback(QString url)
        : m_url(std::move(url))
    {
    }

    QString requestUrl() const override { return m_url; }
    void complete(const QVariantMap& answer) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_answers.push_back(answer);
    }

    int answers() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return int(m_answers.size());
    }
    /** Of the first answer. */
    QByteArray body() const { return first(QStringLiteral("resourceData")).toByteArray(); }
    QVariantMap headers() const { return first(QStringLiteral("headerMap")).toMap(); }

private:
    QVariant first(const QString& member) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_answers.empty() ? QVariant() : m_answers.front().value(member);
    }

    const QString m_url;
    mutable std::mutex m_mutex;
    std::vector<QVariantMap> m_answers;
};
