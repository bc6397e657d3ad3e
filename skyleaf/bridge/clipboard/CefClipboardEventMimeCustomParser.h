#pragma once

#include <QByteArray>
#include <QObject>
#include <QPair>
#include <QVariantMap>

/** Reads the browser's custom data format. No parent; any thread. */
class CefClipboardEventMimeCustomParser : public QObject
{
    Q_OBJECT
public:
    explicit CefClipboardEventMimeCustomParser(const QByteArray& bytes);

    /** Type to text and true; an empty map and false when the bytes end early. */
    QPair<QVariantMap, bool> parse() const;

private:
    QByteArray m_bytes;
};
