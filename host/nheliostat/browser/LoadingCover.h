#pragma once

#include <QWidget>

class QLabel;

namespace nheliostat::browser {

/** Covers the web view while a document opens. */
class LoadingCover final : public QWidget
{
    Q_OBJECT
public:
    explicit LoadingCover(QWidget* parent = nullptr);

    /** An empty file name shows no name. */
    void showFor(const QString& fileName);

private:
    QLabel* m_text;
};

} // namespace nheliostat::browser
