#pragma once

#include <QObject>
#include <QTimer>

namespace nheliostat::browser {

/**
 * Watches a view whose document was loaded in advance: the page that got it either loads something else, or
 * runs a script that tells the document what to show. A document that is told nothing, or does not answer,
 * must not stand there for good. User-interface thread.
 */
class TakeOverWatch final : public QObject
{
    Q_OBJECT
public:
    /** Milliseconds from the wish to show something until a script ran, until the document answered it, and
     * until whatever it shows by then is shown. */
    struct Limits
    {
        int script = 3000;
        int answer = 10000;
        int document = 5000;
    };

    explicit TakeOverWatch(Limits limits, QObject* parent = nullptr);

    /** Something is to be shown. */
    void expect();
    /** The page ran a script in the document. */
    void noteScript();
    /** The document sent the host a message. */
    void noteAnswer();
    /** The document that was asked for is open, something else is loaded, or the view ended. */
    void end();
    bool isOpen() const { return m_step != Step::Ended; }

Q_SIGNALS:
    /** Nothing came of the document that was loaded in advance. */
    void failed();
    /** The document answered and may have stopped to say something else than what was asked for. */
    void shown();

private:
    enum class Step { Waiting, Expecting, Told, Answered, Ended };

    void enter(Step step, int limit);
    void passLimit();

    const Limits m_limits;
    Step m_step = Step::Waiting;
    QTimer m_limit;
};

} // namespace nheliostat::browser
