#pragma once

#include "shell/story/OpenStory.h"

#include <QSvgRenderer>
#include <QWidget>

namespace shell {

/** Draws a story as wide as it is; its height follows. Makes the picture when it is painted, not before. */
class StoryView final : public QWidget
{
    Q_OBJECT
public:
    explicit StoryView(QWidget* parent = nullptr);

    void setStory(const story::OpenStory& openStory);
    void clear();
    void setDark(bool dark);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void draw();

    std::optional<story::OpenStory> m_story;
    bool m_dark = false;
    bool m_isDrawn = false;
    QSvgRenderer m_picture;
};

} // namespace shell
