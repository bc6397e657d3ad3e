#pragma once

#include "nheliostat/documents/DocumentViews.h"

#include <QWidget>

/** What is known of a file that is not shown here: icon, name, size; and a button that opens it elsewhere. */
class FileCard final : public QWidget
{
    Q_OBJECT
public:
    FileCard(const QString& path, const DocumentViewSetup& setup, QWidget* parent = nullptr);
};
