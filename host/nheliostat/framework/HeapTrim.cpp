#include "nheliostat/framework/HeapTrim.h"

#include <QRunnable>
#include <QThreadPool>

#include <chrono>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// A web view is not all gone when its page says that it is released.
constexpr std::chrono::seconds delay(2);

class Trim final : public QRunnable
{
public:
    void run() override
    {
#if defined(__GLIBC__)
        malloc_trim(0);
#endif
    }
};

} // namespace

HeapTrim::HeapTrim(QObject* parent)
    : QObject(parent)
    , m_delay(this)
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(delay);
    connect(&m_delay, &QTimer::timeout, this, [] { QThreadPool::globalInstance()->start(new Trim); });
}

void HeapTrim::soon()
{
    m_delay.start();
}
