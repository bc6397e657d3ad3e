#pragma once

#include "nheliostat/NHelioPage.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QVector>

/** What the windows of a shell show, in order. */
struct WorkAreaRecord
{
    struct Window
    {
        QList<NHelioWorkAreaRecoverItem> items;
        int current = -1; //!< index of the shown item; -1 for none of them
    };
    QVector<Window> windows;

    /** How many items all windows have. */
    int count() const;

    QByteArray toJson() const;

    struct Reading;
    /** What can be read of a record; items that make no sense are left out, and the order stays. */
    static Reading fromJson(const QByteArray& text);
};

struct WorkAreaRecord::Reading
{
    WorkAreaRecord record;
    QStringList complaints; //!< what was left out and why
};
