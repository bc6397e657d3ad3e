#pragma once

#include <QByteArray>
#include <QObject>
#include <QPair>

/** Reads "HTML Format" straight from the system clipboard. No parent; user-interface thread. */
class CefClipboardEventMimeHtmlParser : public QObject
{
    Q_OBJECT
public:
    /** Makes the format known to the system. */
    CefClipboardEventMimeHtmlParser();

    /**
     * The bytes and true, an office program's document cut out of its wrapping; empty bytes and false when
     * the clipboard cannot be read or has no such format.
     */
    QPair<QByteArray, bool> parse() const;
};
