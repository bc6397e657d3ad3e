#pragma once

#include <functional>

#include <QString>

class QWidget;

/** What a document view is told besides the file. */
struct DocumentViewSetup
{
    QString title;
    /** Hands the file to the program that the system has for it; empty when that is not offered. */
    std::function<void()> openWithSystem;
};

/**
 * A widget that shows a file on this machine: text and HTML to read, an image as a picture, anything else by
 * its name and size. Null when there is no such file. Owned by `parent`.
 */
QWidget* createDocumentView(const QString& path, const DocumentViewSetup& setup, QWidget* parent);
