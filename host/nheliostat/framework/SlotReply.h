#pragma once

#include <QByteArray>
#include <QMetaObject>
#include <QPointer>
#include <QString>

/**
 * Who waits for an answer: a slot (bool success, const QString& requestId, const T&) of an object. An object
 * that is gone meanwhile, or an empty slot, gets nothing.
 */
class SlotReply
{
public:
    SlotReply(QString requestId, QObject* receiver, const char* slot)
        : m_requestId(std::move(requestId))
        , m_receiver(receiver)
        , m_slot(slot)
    {
    }

    const QString& requestId() const { return m_requestId; }

    /** `type` is the type's name as the slot's declaration spells it. On the receiver's thread. */
    template <typename T>
    void deliver(bool success, const char* type, const T& value) const
    {
        if (m_receiver && !m_slot.isEmpty())
            QMetaObject::invokeMethod(m_receiver, m_slot.constData(), Q_ARG(bool, success),
                                      Q_ARG(QString, m_requestId), QArgument<T>(type, value));
    }

private:
    QString m_requestId;
    QPointer<QObject> m_receiver;
    QByteArray m_slot;
};
