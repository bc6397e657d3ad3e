#pragma once

#include <QEvent>

/** A script inter-process event; the first data field says what happened (0: a browser ended abnormally). */
class NHelioScriptIpcEvent : public QEvent
{
public:
    static constexpr int eventType = 33399;
    static constexpr int browserException = 0;

    explicit NHelioScriptIpcEvent(qint32 kind)
        : QEvent(static_cast<QEvent::Type>(eventType))
        , m_kind(kind)
    {
    }
    qint32 kind() const { return m_kind; }

private:
    qint32 m_kind;
};
