#pragma once

#include <QDate>
#include <QString>
#include <QVariantMap>

#include <functional>

/** Counts how often online documents are opened, by day and kind. User-interface thread. */
class NOpenUsageRecord
{
public:
    /** Told the feature whose use is counted. */
    using PreCreateNotice = std::function<void(const QString& feature)>;

    /** The record of opened online files; created on first use. */
    static NOpenUsageRecord& openOnlineFile();

    explicit NOpenUsageRecord(const QString& name);

    /** Counts one open of `key` or, when that is empty, of the URL's office type; nothing without either. */
    void record(const QString& url, const QString& key, const PreCreateNotice& notice);

    bool isValid() const { return m_valid; }
    /** Julian day number (text) to {"total": count, key: count, …}. */
    QVariantMap content() const { return m_content; }

private:
    void checkDay();
    void count(const QString& key);

    QDate m_date;
    QVariantMap m_content;
    QString m_contentKey;
    QString m_dateKey;
    int m_keepDays;
    bool m_valid;
};
