#pragma once

#include <QPixmap>
#include <QWidget>

/** A picture in the middle, as large as it is or as there is room. */
class PictureView final : public QWidget
{
    Q_OBJECT
public:
    /** A file that cannot be decoded shows nothing. */
    explicit PictureView(const QString& path, QWidget* parent = nullptr);

    bool isEmpty() const { return m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_picture;
};
