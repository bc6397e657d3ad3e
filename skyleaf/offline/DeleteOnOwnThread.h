#pragma once

#include <QObject>
#include <QThread>

/** Deletes a shared object on the thread that it lives on, whichever thread lets go of it last. */
struct DeleteOnOwnThread
{
    void operator()(QObject* object) const
    {
        if (object->thread() == QThread::currentThread())
            delete object;
        else
            object->deleteLater();
    }
};
