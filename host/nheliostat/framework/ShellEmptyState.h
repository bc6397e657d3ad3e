#pragma once

#include <QWidget>

/** What a window shows when it has no page: a hint and a button for a new one. */
class ShellEmptyState final : public QWidget
{
    Q_OBJECT
public:
    explicit ShellEmptyState(QWidget* parent = nullptr);

Q_SIGNALS:
    void newPageRequested();
};
