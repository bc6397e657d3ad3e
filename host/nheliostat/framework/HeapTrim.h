#pragma once

#include <QObject>
#include <QTimer>

/**
 * Gives memory that was freed back to the system. A web view leaves holes all over the heap when it goes,
 * which the allocator keeps otherwise.
 */
class HeapTrim final : public QObject
{
    Q_OBJECT
public:
    explicit HeapTrim(QObject* parent = nullptr);

    /** Trims, on another thread, once nobody asked for it for some seconds. */
    void soon();

private:
    QTimer m_delay;
};
