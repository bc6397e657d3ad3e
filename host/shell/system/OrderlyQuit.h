#pragma once

#include <QObject>
#include <QTimer>

class ShellApplication;

namespace shell {

/** Ends the program with its documents asked first. User-interface thread. */
class OrderlyQuit final : public QObject
{
    Q_OBJECT
public:
    /** How long the user may take to answer what a signal led to. */
    static constexpr int patienceSeconds = 30;

    /** `attended`: somebody sits before the screen and can be asked. */
    OrderlyQuit(ShellApplication& application, bool attended, QObject* parent = nullptr);

    /**
     * The system wants the program to end. Where words would be lost the user is asked, and may stay; a
     * second request, or no answer in time, ends the program all the same.
     */
    void request();
    /** Whoever drives the program wants its end: documents save what they can, nobody is asked. */
    void order();

private:
    void giveUp();

    ShellApplication& m_application;
    const bool m_attended;
    QTimer m_patience;
};

} // namespace shell
