#pragma once

#include <QByteArray>
#include <QImage>
#include <QVector>

class QMimeData;

/**
 * Pictures between a clipboard and the page. A small file can claim a picture that fills the memory: its
 * points are counted before it is decoded. Any thread, unless said otherwise.
 */
namespace clipboardimages {

/** The most points of a picture that is read; 256 MiB of memory. */
constexpr qint64 mostRead = 64LL << 20;
/** The most points of a picture that is placed: programs that ask for it are answered at once, by Qt. */
constexpr qint64 mostPlaced = 16LL << 20;

/** A picture as it lies on a clipboard: decoded or not. */
struct Source
{
    QImage image;
    QByteArray encoded; //!< when there is no `image`

    bool isEmpty() const { return image.isNull() && encoded.isEmpty(); }
    /** Whether reading it takes a few milliseconds at most. */
    bool isSmall() const;
};

/** The picture of `content`, which lies on the system clipboard; not decoded. User-interface thread. */
Source sourceOf(const QMimeData& content);
/** The picture as a PNG; empty when it is too large or cannot be read. */
QByteArray toPng(const Source& source);

/** Whether decoding all of the files takes a few milliseconds at most. */
bool areSmall(const QVector<QByteArray>& files);
/** The last of the files that can be read and is not too large. */
QImage lastOf(const QVector<QByteArray>& files);

} // namespace clipboardimages
