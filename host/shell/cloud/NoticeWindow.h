#pragma once

#include "shell/cloud/CloudWindow.h"

namespace shell {

/** A text with a button that closes the window; does not block. */
class NoticeWindow final : public CloudWindow
{
    Q_OBJECT
public:
    NoticeWindow(const QString& name, const QString& title, const QString& text, QWidget* parent);
};

} // namespace shell
