#include "nheliostat/browser/TakeOverWatch.h"

namespace nheliostat::browser {

TakeOverWatch::TakeOverWatch(Limits limits, QObject* parent)
    : QObject(parent)
    , m_limits(limits)
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, &TakeOverWatch::passLimit);
}

void TakeOverWatch::expect()
{
    if (m_step == Step::Waiting)
        enter(Step::Expecting, m_limits.script);
}

void TakeOverWatch::noteScript()
{
    if (m_step == Step::Waiting || m_step == Step::Expecting)
        enter(Step::Told, m_limits.answer);
}

void TakeOverWatch::noteAnswer()
{
    if (m_step == Step::Told)
        enter(Step::Answered, m_limits.document);
}

void TakeOverWatch::end()
{
    m_step = Step::Ended;
    m_limit.stop();
}

void TakeOverWatch::enter(Step step, int limit)
{
    m_step = step;
    m_limit.start(limit);
}

void TakeOverWatch::passLimit()
{
    if (m_step == Step::Answered) {
        Q_EMIT shown();
        return;
    }
    end();
    Q_EMIT failed();
}

} // namespace nheliostat::browser
