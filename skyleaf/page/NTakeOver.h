#pragma once

#include <QString>

class NHelioBrowserWidgetBase;
class NxWebViewContainer;

/** What a take-over has to know of the document. */
struct NTakeOverDocument
{
    QString url;
    QString fileId;
    QString officeType;
    QString traceId;
    QString injectId;
};

/**
 * A browser that was prepared in advance, and the front end that may already run in it. Such a front end
 * opens one document, so that only the first load of a page can be given to it.
 */
class NTakeOver
{
public:
    /** Whether the page's browser came from the preload container. */
    bool isPrepared() const { return m_isPrepared; }
    void setPrepared(bool prepared) { m_isPrepared = prepared; }
    /** The title of what was prepared, which is none of the document. */
    void setPreparedTitle(const QString& title) { m_preparedTitle = title; }
    bool isPreparedTitle(const QString& title) const { return m_isPrepared && title == m_preparedTitle; }

    /**
     * Whether the running front end takes the document; decided once. One that does not fit has its local
     * resources cleared.
     */
    bool check(NxWebViewContainer* container, const NTakeOverDocument& document);
    bool isUsed() const { return m_isUsed; }
    /** Whether the running front end is still to be told what to open. */
    bool isDue() const { return m_isUsed && !m_isDone; }
    /** Tells it, by a script. */
    void run(NxWebViewContainer& container, const NTakeOverDocument& document);
    /** The page shows something else from now on, which is loaded like any page. */
    void end();

private:
    QString mismatch(const NxWebViewContainer& container, const NTakeOverDocument& document) const;

    bool m_isPrepared = false;
    bool m_isChecked = false;
    bool m_isUsed = false;
    bool m_isDone = false;
    QString m_preparedTitle;
};
