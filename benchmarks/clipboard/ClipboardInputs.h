#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

/** One operation on a clipboard format, and what it cannot do without. */
struct ClipboardCase
{
    const char* name;
    qint64 inputBytes;           //!< what the input holds: UTF-16 for texts, the bytes for formats
    std::function<void()> work;  //!< keeps its result until it returns
    std::function<void()> floor; //!< the conversion or the copy alone
};

/** The operations on an input of about that many bytes. */
std::vector<ClipboardCase> clipboardCases(int size);

/** From 1 KiB to 64 MiB. */
extern const std::vector<int> clipboardSizes;
