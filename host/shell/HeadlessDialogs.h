#pragma once

#include <QObject>

namespace shell {

/** Turns every dialog away as soon as it shows, as if cancelled, with a log line: nobody is there to answer
 * it. */
class HeadlessDialogs final : public QObject
{
    Q_OBJECT
public:
    /** Begins with the construction; there must be a QApplication. */
    explicit HeadlessDialogs(QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace shell
