#pragma once

#include <QFrame>

/** Offers, above the pages, to open again what was open when the shell was killed. */
class ShellRecoverBar final : public QFrame
{
    Q_OBJECT
public:
    explicit ShellRecoverBar(int documents, QWidget* parent = nullptr);

Q_SIGNALS:
    void restoreChosen();
    void dismissChosen();
};
