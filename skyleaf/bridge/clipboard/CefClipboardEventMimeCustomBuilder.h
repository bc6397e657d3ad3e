#pragma once

#include <QByteArray>
#include <QObject>
#include <QVariantMap>

/** Collects types and their values and makes the browser's custom data format of them. No parent; any thread.
 */
class CefClipboardEventMimeCustomBuilder : public QObject
{
    Q_OBJECT
public:
    CefClipboardEventMimeCustomBuilder() = default;

    /** `value` is a text or a map; a type that is there already gets the new value. */
    void insert(const QString& type, const QVariant& value);
    bool isEmpty() const { return m_values.isEmpty(); }
    /** See custommime::build. Empty bytes, and an error in the log, when memory runs out. */
    QByteArray build() const;

private:
    QVariantMap m_values;
};
