#pragma once

#include <QByteArray>
#include <QObject>

/** Wraps HTML for the clipboard format "HTML Format". No parent; any thread. */
class CefClipboardEventMimeHtmlBuilder : public QObject
{
    Q_OBJECT
public:
    CefClipboardEventMimeHtmlBuilder() = default;

    /** `fragment` is UTF-8. See htmlformat::build. */
    QByteArray build(const QByteArray& fragment) const;
};
